"""Makes odd mail by the hundred, with what a careful reader would see of each known from how it was made.

A case is (name, bytes of the file, text or None, attachments as {name: bytes}). Texts are compared whole.
"""

import base64
import binascii
import itertools
import urllib.parse

from mail_kit import encode, multipart, part

TEXTS = {
    "simplified": "您好，附件是上周的会议纪要，请查收。\n如有问题请联系我们，谢谢！",
    "names": "王喆、李镕和张昇会参加周一的会议，请准备好合同和发票。",
    "traditional": "您好，附件是上週的會議紀要，請查收。\n如有問題請與我們聯繫，謝謝！",
    "japanese": "お世話になっております。会議の資料を添付しましたので、\nご確認ください。よろしくお願いします。",
    "vendor": "①髙橋様、㈱山﨑の資料です。ご確認ください。",
    "korean": "안녕하세요. 회의 자료를 첨부하였으니\n확인하여 주시기 바랍니다. 감사합니다.",
    "russian": "Добрый день, высылаю вам материалы\nк нашей встрече в понедельник.",
    "greek": "Καλημέρα, σας στέλνω το υλικό για\nτη συνάντησή μας τη Δευτέρα.",
    "thai": "สวัสดีครับ ผมขอส่งรายงานการประชุมให้คุณตรวจสอบ",
    "western": "Grüße aus München: “schöne” Tage – für 5 € im Café.",
    "ascii": "Please find the minutes of our meeting attached.",
}
# Text: what it is encoded in, and the labels that may come with it, wrong ones included ("" for none).
LIES = ("", "us-ascii", "iso-8859-1", "unknown-8bit", "default", "x-unknown", "utf-8", "gb2312\" ;x=\"")
CHARSETS = (
    ("simplified", "gb18030", ("gb2312", "GBK", "gb18030", "GB_2312-80", "x-gbk", "cp936", "hz-gb-2312", "big5", "windows-1251", *LIES)),
    ("names", "gb18030", ("gb2312", "GBK", "chinese", "csGB2312", *LIES)), ("simplified", "hz", ("hz-gb-2312", "HZ", "gb2312", "")),
    ("traditional", "cp950", ("big5", "Big5-HKSCS", "x-x-big5", "cn-big5", "gb2312", *LIES[:-1])),
    ("traditional", "gb18030", ("gbk", "gb2312", "gb18030")),
    ("japanese", "cp932", ("shift_jis", "x-sjis", "Windows-31J", "MS_Kanji", "gb2312", *LIES[:-1])),
    ("vendor", "cp932", ("shift_jis", "cp932", "")), ("japanese", "euc_jp", ("euc-jp", "x-euc-jp", "EUCJP", "gb2312", *LIES[:-1])),
    ("japanese", "iso2022_jp", ("iso-2022-jp", "ISO-2022-JP-MS", "csISO2022JP", "gb2312", "utf-8", *LIES[:-1])),
    ("japanese", "gb18030", ("gb2312", "gbk")), ("russian", "gb18030", ("gb2312", "gbk")),
    ("korean", "cp949", ("euc-kr", "ks_c_5601-1987", "KS_C_5601", "ksc5601", "uhc", "x-mac-korean", "gb2312", *LIES[:-1])),
    ("korean", "iso2022_kr", ("iso-2022-kr",)), ("russian", "koi8_r", ("koi8-r", "koi8-u", *LIES[:-1])),
    ("russian", "cp1251", ("windows-1251", "cp1251", "iso-8859-1", "")), ("russian", "iso8859_5", ("iso-8859-5", "")),
    ("russian", "mac_cyrillic", ("x-mac-cyrillic",)), ("greek", "cp1253", ("windows-1253", "")), ("greek", "iso8859_7", ("iso-8859-7",)),
    ("thai", "cp874", ("windows-874", "tis-620", "")),
    ("western", "cp1252", ("iso-8859-1", "windows-1252", "us-ascii", "iso-8859-15 ", *LIES)), ("western", "mac_roman", ("x-mac-roman", "macintosh")),
    *((name, "utf-8", ("utf-8", "UTF8", "unicode-1-1-utf-8", "gb2312", "big5", "euc-kr", "iso-2022-jp", "windows-1251", "shift_jis", *LIES))
      for name in ("simplified", "traditional", "japanese", "korean", "russian", "western")),
    ("japanese", "utf-7", ("utf-7", "unicode-1-1-utf-7")), ("korean", "utf-16", ("utf-16", "unicode")), ("simplified", "utf-16-le", ("utf-16le", "utf-16")),
    ("ascii", "ascii", ("utf-8", "gb2312", "hz-gb-2312", "iso-2022-jp", "utf-7", "utf-16", "x-nothing", "base64", "", "us-ascii")),
)


def charsets():
    for (text, codec, labels), encoding, kind in itertools.product(CHARSETS, ("8bit", "base64", "quoted-printable"), ("plain", "html")):
        if codec.startswith("utf-16") and encoding == "8bit":
            continue
        for label in labels:
            shown = TEXTS[text]
            source = shown if kind == "plain" else "<p>%s</p>" % shown.replace("\n", "<br>")
            entity = part(source.encode(codec), "text/" + kind, label, encoding)
            yield "%s %s as %s, %s %s" % (text, codec, label, encoding, kind), entity, shown, {}


NAMES = (("季度报告 2024（终稿）.xlsx", "gb18030", "gb2312"), ("會議通知書.doc", "cp950", "big5"), ("会議の資料について.pdf", "cp932", "shift_jis"),
         ("会議の資料.pdf", "iso2022_jp", "iso-2022-jp"), ("회의자료안내.hwp", "cp949", "ks_c_5601-1987"), ("Отчёт за год.docx", "koi8_r", "koi8-r"),
         ("Übersicht März.pdf", "cp1252", "iso-8859-1"), ("项目计划与预算说明书（修订版）第二稿以及所有相关的附件清单.docx", "utf-8", "utf-8"))


def name_forms(name, codec, label):
    """(form, header lines) that carry a name, from the rules and from what mailers make of them."""
    raw = name.encode(codec)
    b64, hexed = base64.b64encode(raw).decode(), urllib.parse.quote(raw)
    pieces = [hexed[at:at + 42] for at in range(0, len(hexed), 42)]
    words = "=?%s?B?%s?=" % (label, b64)
    quoted = "=?%s?Q?%s?=" % (label, "".join("=%02x" % byte for byte in raw))
    extended = "".join(";\n filename*%d*=%s%s" % (i, "%s''" % label if not i else "", piece) for i, piece in enumerate(pieces))
    yield "encoded word in quotes", "Content-Disposition: attachment; filename=\"%s\"" % words
    yield "encoded word bare", "Content-Disposition: attachment;\n filename=%s" % words
    yield "quoted-printable word", "Content-Disposition: attachment;\n\tfilename=\"%s\"" % quoted
    yield "on the type alone", "Content-Type: application/x-data;\n name=\"%s\"" % words
    yield "2231", "Content-Disposition: attachment; filename*=%s''%s" % (label, hexed)
    yield "2231 in quotes", "Content-Disposition: attachment; filename*=\"%s''%s\"" % (label, hexed)
    yield "2231 with a language", "Content-Disposition: attachment; filename*=%s'zh'%s; size=5" % (label.upper(), hexed)
    yield "2231 in pieces", "Content-Disposition: attachment" + extended
    yield "2231 in pieces in another order", "Content-Disposition: attachment; filename*1*=%s; filename*0*=%s''%s" % (
        hexed[42:], label, hexed[:42])
    yield "encoded word in pieces", "Content-Disposition: attachment; filename*0=\"%s\"; filename*1=\"%s\"" % (words[:20], words[20:])
    yield "2231 beside a plain one", "Content-Disposition: attachment; filename=\"a.bin\"; filename*=%s''%s" % (label, hexed)
    yield "2231 without its star", "Content-Disposition: attachment; filename=\"%s''%s\"" % (label, hexed)
    yield "name broken over words", "Content-Disposition: attachment; filename=\"=?%s?B?%s?=\n =?%s?B?%s?=\"" % (
        label, base64.b64encode(raw[:9]).decode(), label, base64.b64encode(raw[9:]).decode())
    if codec not in ("iso2022_jp", "koi8_r"):
        yield "bare bytes", b"Content-Disposition: attachment; filename=\"" + raw + b"\""


def names():
    data = bytes(range(256)) * 3
    for name, codec, label in NAMES:
        for form, lines in name_forms(name, codec, label):
            lines = lines if isinstance(lines, bytes) else lines.encode()
            lines = lines if b"Content-Type" in lines else b"Content-Type: application/x-data\n" + lines
            file = lines + b"\nContent-Transfer-Encoding: base64\n\n" + encode(data, "base64")
            yield "%s of %s" % (form, label), multipart("mixed", part("正文"), file), "正文", {name: data}


DATA = b"%PDF-1.4\r\n\0\xff\n--b1--\n\r\r\n" + bytes(range(256))
PDF = (b"Content-Type: application/pdf; name=\"a.pdf\"\nContent-Transfer-Encoding: base64\n"
       b"Content-Disposition: attachment; filename=\"a.pdf\"\n\n" + encode(DATA, "base64"))
TEXT = "正文第一行\n正文第二行"
HTML = "<p>正文第一行<br>正文第二行</p>"


def wrapped(kind, *parts):
    wrapped.count += 1
    return multipart(kind, *parts, boundary="b%d=_x" % wrapped.count)


wrapped.count = 0
# Shapes around an entity that a reader shows as the entity alone, attachments included.
SHAPES = {
    "mixed": lambda e: wrapped("mixed", e), "related": lambda e: wrapped("related", e, part(b"GIF8x", "image/gif", extra="Content-ID: <x@y>\n")),
    "alternative": lambda e: wrapped("alternative", e), "signed": lambda e: wrapped("signed", e, part(b"sig", "application/pgp-signature")),
    "report": lambda e: wrapped("report", e), "no closing line": lambda e: wrapped("mixed", e).rpartition(b"\n--")[0] + b"\n",
    "unknown kind": lambda e: wrapped("x-strange", e), "preamble": lambda e: wrapped("mixed", e).replace(b"\n\n", b"\n\nThis is MIME.\n", 1),
    "epilogue": lambda e: wrapped("mixed", e) + b"\nnot to be read\n", "empty parts around": lambda e: wrapped("mixed", part(""), e, part(" \n")),
    "boundary in no quotes": lambda e: wrapped("mixed", e).replace(b'boundary="', b"boundary=", 1).replace(b'=_x"\n', b"=_x\n", 1),
    "blanks behind the lines": lambda e: (lambda m, b: m.replace(b"\n--" + b + b"\n", b"\n--" + b + b" \t\n"))(
        wrapped("mixed", e), b"b%d=_x" % wrapped.count),
    "wrong boundary": lambda e: wrapped("mixed", e).replace(b'boundary="b', b'boundary="c', 1),
    "star for the kind": lambda e: wrapped("*", e), "odd case": lambda e: wrapped("MiXeD", e).replace(b"Content-Type", b"CONTENT-type ", 1),
}
FILES = {
    "plain": lambda m: m, "crlf": lambda m: m.replace(b"\n", b"\r\n"), "cr": lambda m: m.replace(b"\n", b"\r"), "bom": lambda m: b"\xef\xbb\xbf" + m,
    "mbox line": lambda m: b"From a@example.com Mon Jan  1 10:00:00 2024\n" + m, "blank lines first": lambda m: b"\r\n\n" + m,
    "no final line end": lambda m: m.rstrip(b"\n"), "NUL behind": lambda m: m + b"\0" * 9,
}
LEAVES = {"plain": part(TEXT), "html": part(HTML, "text/html"), "base64": part(TEXT, encoding="base64"), "gb2312 html": part(
    HTML, "text/html", "gb2312", "quoted-printable"), "two": multipart("alternative", part(TEXT), part(HTML, "text/html"), boundary="leaf")}


def structures():
    """Every shape in every shape, each with another leaf, kind of file, and with or without an attachment."""
    pairs = itertools.product(SHAPES, SHAPES)
    rounds = zip(pairs, itertools.cycle(LEAVES), itertools.cycle(FILES), itertools.cycle((True, False, False)))
    for (outer, inner), leaf, file, attached in rounds:
        entity = SHAPES[inner](LEAVES[leaf])
        entity = wrapped("mixed", entity, PDF) if attached else entity
        odd_ends = file in ("crlf", "cr")
        message = FILES[file](b"From: a@example.com\nMIME-Version: 1.0\n" + SHAPES[outer](entity))
        # A wrong boundary hides which lines are whose where two of them are nested.
        if [outer, inner].count("wrong boundary") < 2 and not (odd_ends and "blanks" in outer + inner):
            yield "%s in %s, %s, %s" % (inner, outer, leaf, file), message, TEXT, {"a.pdf": DATA} if attached else {}


def yenc(data):
    coded = bytes((byte + 42) & 255 for byte in data)
    for sign in (b"=", b"\0", b"\r", b"\n"):
        coded = coded.replace(sign, b"=" + bytes(((sign[0] + 64) & 255,)))
    return b"=ybegin line=128 size=%d name=a.bin\r\n%s\r\n=yend size=%d\r\n" % (len(data), coded, len(data))


def inline():
    data = bytes(range(256)) * 2
    uu = b"begin 644 a.bin\n" + b"".join(binascii.b2a_uu(data[at:at + 45]) for at in range(0, len(data), 45)) + b"`\nend\n"
    for name, block in (("uuencode", uu), ("yEnc", yenc(data))):
        message = b"Subject: x\n\n" + "前\n".encode() + block + "后".encode()
        yield name + " inside a text", message, "前\n[a.bin]\n后", {"a.bin": data}


def all_cases():
    return itertools.chain(charsets(), names(), structures(), inline())
