"""Turns message files into readable text and attachments for a program that talks JSON to it.

One request from standard input until its end, one answer to standard output; with --serve one
request and one answer a line until "shutdown". An answer holds "ok" and either the fields of its
command (preview, bodytext_batch, attachments, attachment_data) or "error", a text for the user.

Messages are hostile. Whatever one of them holds costs that message alone: parts, depth, header
size, bytes read and time are bounded, every step is linear in its input, and nothing is fetched,
run or written. The file stands alone (python3 -I -B, standard library, Python 3.9 or later) and
starts fast, since most runs live for 150 messages: what only odd mail needs is imported, and its
patterns compiled, when they are needed.
"""

import binascii
import codecs
import gc
import json
import os
import re
import stat
import sys
import time
from functools import lru_cache

MAX_DEPTH = 100
MAX_PARTS = 10_000
MAX_HEADER = 1 << 20
MAX_FIELD = 1 << 14
MAX_REQUEST = 64 << 20
DEFAULT_TEXT_BYTES = 2 << 20
DEFAULT_LIST_BYTES = 8 << 20
DEFAULT_DATA_BYTES = 200 << 20

# The client gives a preview and an attachment 4 s, a listing 20 s, a batch of 150 bodies 180 s.
SECONDS = {"preview": 3.0, "attachment_data": 3.6, "attachments": 15.0, "bodytext_batch": 3.0}
BATCH_SECONDS = 150.0

EMPTY_PREVIEW = "暂无正文预览"
CAP_NOTICE = "（邮件结构超出上限，其余部分未解析）"
SIGNATURE_MARK = "\uf0f0SIG\uf0f0"
QUOTE_MARK = "\uf0f1QUOTE\uf0f1"


class Failure(Exception):
    """What the user is told about a request that can't be served."""


class TimeUp(BaseException):
    """Ends the work on one message; no handler of ordinary errors may swallow it."""


class Clock:
    """The time allowed for the message at work.

    Loops ask check(); where the system has interval timers, a signal ends what no loop of ours sees.
    """

    def __init__(self):
        self.until = None
        self.set_timer = lambda seconds: None

    def run(self, seconds, work, *arguments):
        try:
            try:
                self.until = time.monotonic() + seconds
                self.set_timer(seconds)
                return work(*arguments)
            finally:
                self.until = None
                self.set_timer(0)
        except TimeUp:
            raise Failure("处理这封邮件超时") from None

    def check(self):
        if self.until is not None and time.monotonic() > self.until:
            raise TimeUp

    def use_signals(self):
        try:
            import signal
            signal.signal(signal.SIGALRM, self._alarm)
            self.set_timer = lambda seconds: signal.setitimer(signal.ITIMER_REAL, seconds)
        except (ImportError, AttributeError, ValueError):
            pass

    def _alarm(self, _number, _frame):
        if self.until is not None:
            raise TimeUp


CLOCK = Clock()


# ---------------------------------------------------------------------------------------- charsets

# Codec: the labels of mail it reads, without signs and a leading "x". Declared sets are widened to
# what is really written under their names, as the WHATWG encoding standard does: gb2312 is GB 18030,
# iso-8859-1 is windows-1252. A label that says nothing has the codec "". Other labels ask Python.
CODECS = {label: codec for codec, labels in {
    "gb18030": "gb2312 gbk gb18030 gb231280 cngb gb cp936 ms936 windows936 euccn chinese gb2312charset macchinesesimp",
    "hz": "hzgb2312 hz",
    "cp950": "big5 cp950 windows950 cnbig5 big5eten macchinesetrad",
    "big5hkscs": "big5hkscs",
    "cp932": "shiftjis sjis cp932 ms932 windows932 windows31j mskanji macjapanese",
    "euc_jp": "eucjp eucjpms cp51932 ujis",
    "cp949": "euckr ksc56011987 ksc5601 ksc56011989 cp949 windows949 uhc korean ks",
    "iso2022": "iso2022jp iso2022jpms iso2022jp1 iso2022jp2 iso2022jp3 iso2022jp2004 iso2022jpext cp50220 cp50221"
               " jis iso2022kr iso2022cn iso2022cnext",
    "utf-8": "utf8 unicode11utf8 utf8mb4",
    "utf-7": "utf7 unicode11utf7 unicode20utf7",
    "utf-16": "utf16 unicode ucs2 iso10646ucs2", "utf-16-le": "utf16le", "utf-16-be": "utf16be",
    "": "usascii ascii ansix341968 646 unknown8bit unknown default defaultcharset 8bit binary none userdefined",
    "cp1252": "iso88591 latin1 88591 ansi windows1252 l1 iso885911987",
    "cp1254": "iso88599 latin5", "cp874": "iso885911 tis620", "iso8859_8": "iso88598i", "iso8859_6": "iso88596i",
    "mac_roman": "macroman macintosh", "mac_cyrillic": "maccyrillic", "mac_latin2": "macce",
}.items() for label in labels.split()}
EAST_ASIAN = frozenset(("gb18030", "cp950", "big5hkscs", "cp932", "euc_jp", "cp949", "johab"))

# Control characters except tab and the line ends; none is a second byte of a multibyte set.
CONTROLS = bytes(set(range(32)) - {9, 10, 13}) + b"\x7f"
HIGH_BITS = bytes(byte | 0x80 if 0x21 <= byte <= 0x7E else byte for byte in range(256))
LOW_BITS = bytes(byte & 0x7F for byte in range(256))
UNWANTED = "[\x00-\x08\x0b\x0c\x0e-\x1f\x7f\uf0f0-\uf0f3]"

# The commonest characters of running text and of mail. Text decoded by the right set is made of
# them to a half or more; read by a wrong set it is made of rare ones.
HAN = ("的一是不了在人有我他这个们中来上大为和国地到以说时要就出会可也你对生能而子那得于着下自之年过发后作里用道行"
       "所然家种事成方多经么去法学如都同现当没动面起看定天分还进好小部其些主样理心本前开但因只从想实日军者意无力它与"
       "长把机十民第公此已工使情明性知全三又关点正业外将两高间由问很最重并物手应战向头文体政美相见被利什二等产或新己"
       "制身果加西斯月话合回特代内信表化老给世位次度门任常先海通教儿原东声提立及比员解水名真论处走义各入几口认条平系"
       "气题活尔更别打四神总何电数安少报才结反受目太量再感建务做接必场件计管期市直德资命山金指许统区保至队形社便空决"
       "治展马科司五基眼书非则听白却界达光放强即像难且权思王完设式色路记南品住告类求据程北边死张该交规万取拉格望觉术"
       "领共确传师观清今切院让识候带导争运您请邮箱谢联系话价单附件简历知票档料订购案划谈客服务费优惠免验码密户银网站"
       "這個們來為國說時會對後裡過發經學現當沒動還進樣開從實軍無與長機業將兩間問應戰頭體見產話門東聲員論義幾認條氣題"
       "爾別總電數報結務場計資許統區隊則聽達強難權設記類據邊張該規萬覺術領確傳師觀讓識帶導爭運請郵謝聯繫價單簡歷檔訂"
       "購劃談費優驗碼戶銀網開会社様件願致申込先日本語文字化返信送受仕事業務連絡担当電話番号部課長株式")
KANA = "".join(map(chr, (*range(0x3041, 0x3094), *range(0x30A1, 0x30F7)))) + "ー、。"
HANGUL = ("이다는을의에가고하지니은를로한기도서어나사자시인대해일정있리수것들그게과부보아만스전제상주신여원장동안으요"
          "드합구라공문선계면비관소회경성용세무진습연입내오트없우조유미었개방음실되할간감확메발송님녕")

# Candidates for bytes whose label lies, with the pairs of bytes that make up nearly all text of some.
CANDIDATES = {"gb18030": rb"[\xa1-\xa3\xb0-\xd7][\xa1-\xfe]", "big5hkscs": rb"[\xa1-\xc6][\x40-\x7e\xa1-\xfe]",
              "euc_jp": None, "cp932": None, "cp949": rb"[\xa1-\xa3\xb0-\xc8][\xa1-\xfe]", "koi8_r": None, "cp1251": None}


@lru_cache(maxsize=256)
def codec_for(label):
    """Codec for a declared charset; "" when it says nothing or nothing known."""
    name = label.decode("latin-1").lower().split("*")[0].strip()[:40]
    plain = re.sub(r"[^a-z0-9]", "", name)
    for candidate in (plain, re.sub("^(?:x|cs)", "", plain)):
        if candidate in CODECS:
            return CODECS[candidate]
    try:
        info = codecs.lookup(re.sub(r"^x-", "", name))
    except (LookupError, ValueError, ImportError):
        return ""
    pseudo = ("idna", "punycode", "undefined", "mbcs", "oem", "unicode_escape", "raw_unicode_escape",
              "unicode-escape", "raw-unicode-escape")
    return info.name if info._is_text_encoding and info.name not in pseudo else ""


def replace_bad(error):
    """Replaces what a set doesn't hold; a pair of high bytes goes as one, so that the rest stays in step."""
    data, start = error.object, error.start
    if data[start] == 0x80:
        return "€", start + 1
    pair = 0x81 <= data[start] < 0xFF and data[start + 1:start + 2] >= b"\xa1"
    return "\ufffd", start + 1 + pair


def replace_lone(error):
    """A byte that isn't UTF-8 and stands alone is a sign of windows-1252 (a dash, a quote, an accent)."""
    data, start = error.object, error.start
    around = data[start - 1:start] + data[start + 1:start + 2]
    lone = start > 0 and around.isascii()
    return data[start:start + 1].decode("cp1252", "replace") if lone else "\ufffd", start + 1


codecs.register_error("replace_bad", replace_bad)
codecs.register_error("replace_lone", replace_lone)


def strictly(data, codec):
    """Text of data, where a last character that a size limit may have cut doesn't count; None when invalid."""
    try:
        return data.decode(codec)
    except UnicodeDecodeError as error:
        head = data[:error.start]
        if error.start < len(data) - 3 or head.isascii():
            return None
    try:
        return head.decode(codec)
    except UnicodeDecodeError:
        return None


def jis_to_sjis(pairs):
    """Shift_JIS for a run of two-byte JIS X 0208 codes, which lets cp932 read the vendors' rows as well."""
    shifted = bytearray()
    for row, cell in zip(pairs[::2], pairs[1::2]):
        if not 0x21 <= row <= 0x7E or not 0x21 <= cell <= 0x7E:
            shifted += b"?"
            continue
        shifted.append((row + 1) // 2 + (0x70 if row < 0x5F else 0xB0))
        shifted.append(cell + (0x7E if row % 2 == 0 else 0x20 if cell >= 0x60 else 0x1F))
    return bytes(shifted)


def decode_shifted(data, codec):
    """The seven-bit sets that switch by escape sequences: ISO-2022-JP, -KR, -CN and HZ."""
    def high(match):
        return match.group(1).translate(HIGH_BITS)
    if codec == "hz":
        return strictly(data, "hz") or re.sub(rb"~\{([^~\n]*)(?:~\})?", high, data).decode("gb18030", "replace_bad")
    if b"\x0e" in data or b"\x1b$)" in data:
        family = "gb18030" if b"\x1b$)A" in data or b"\x1b$)G" in data else "cp949"
        data = re.sub(rb"\x1b\$[()*+][A-Z]", b"", data)
        return re.sub(rb"\x0e([^\x0f\n]*)\x0f?", high, data).decode(family, "replace_bad")
    for name in ("iso2022_jp_2", "iso2022_jp_ext"):
        text = strictly(data, name)
        if text is not None:
            return text
    data = re.sub(rb"\x1b\$\(?[@B]([^\x1b\r\n]*)", lambda match: jis_to_sjis(match.group(1)), data)
    data = re.sub(rb"\x1b\(I([^\x1b\r\n]*)", high, data)
    return re.sub(rb"\x1b(?:\([A-Z]|\$[@A-Z]|[&.N][@A-Z]?)", b"", data).decode("cp932", "replace")


def decode_utf16(data, codec):
    if data[:2] in (b"\xff\xfe", b"\xfe\xff"):
        codec = "utf-16"
    elif b"\0" not in data[:2000]:
        return decode_text(data, b"")
    elif codec == "utf-16":
        codec = "utf-16-le" if data[1:400:2].count(0) >= data[0:400:2].count(0) else "utf-16-be"
    return data.decode(codec, "replace")


@lru_cache(maxsize=None)
def common_characters(codec):
    """The characters to expect of a set; of "" those of any East Asian writing."""
    if codec in ("koi8_r", "cp1251"):
        return frozenset("оеаинтсрвлкмпд")
    japanese = HAN + KANA
    return frozenset({"": japanese + HANGUL, "cp949": HANGUL, "euc_jp": japanese, "cp932": japanese}.get(codec, HAN))


def likeness(text, codec, data=b""):
    """How much decoded text looks like writing of that set, 0 to about 1."""
    wide = [c for c in text[:400] if c > "\x7f"] or [c for c in text[:16384] if c > "\x7f"][:400]
    if not wide:
        return 0.0
    score = sum(map(common_characters(codec).__contains__, wide)) / len(wide)
    score -= len(re.findall("[\ue000-\uf8ff\ufffd\uff61-\uff9f]", "".join(wide))) / len(wide)
    if score < 0.3 and CANDIDATES.get(codec):
        pairs = re.findall(rb"[\x80-\xff].?", data[:1000], re.S)
        usual = sum(map(bool, map(re.compile(CANDIDATES[codec], re.S).fullmatch, pairs)))
        score += 0.15 if pairs and usual * 10 >= len(pairs) * 9 else 0
    return score


def guess(data, declared="", hint=""):
    """(text, likeness) by the likeliest set for bytes whose label is missing or lies, or None."""
    runs = [len(run) for run in re.findall(rb"[\x80-\xff]+", data[:16384])]
    if runs.count(1) * 10 >= len(runs) * 8 and not hint:
        return None
    sample = b" ".join(re.findall(rb"[\x80-\xff][\x40-\xff]*", data[:16384]))
    best, best_score = None, 0.22 if declared else 0.12
    for codec in CANDIDATES:
        if codec in ("koi8_r", "cp1251") and (declared or sum(run > 2 for run in runs) * 2 < len(runs)):
            continue
        text = strictly(sample, codec) or sample.decode(codec, "replace_bad")
        if text.count("\ufffd") * 20 > len(text):
            continue
        score = likeness(text, codec, sample) + (0.2 if codec == hint else 0)
        if score > best_score:
            best, best_score = codec, score
    return (data.decode(best, "replace_bad"), best_score) if best else None


def decode_text(data, label, hint=""):
    """Text of data as its label says, or as its bytes say where the label is missing or lies."""
    codec = codec_for(label) if label else ""
    if codec.startswith("utf-16") or data[:2] in (b"\xff\xfe", b"\xfe\xff"):
        text = decode_utf16(data, codec or "utf-16")
    elif codec in ("utf-7", "hz", "iso2022") or b"\x1b$" in data or b"\x1b(" in data:
        text = decode_seven_bit(data, codec)
    elif data.isascii():
        return data.translate(None, CONTROLS).decode("ascii")
    else:
        text = decode_eight_bit(data.translate(None, CONTROLS), codec, hint)
        if not any(map(text.__contains__, "\uf0f0\uf0f1\uf0f2\uf0f3\ufeff")):
            return text
    return re.sub(UNWANTED, "", repair_surrogates(text)).lstrip("\ufeff")


def decode_seven_bit(data, codec):
    if codec == "utf-7" and data.isascii():
        return data.decode("utf-7", "replace")
    shifted = b"\x1b" in data or codec == "hz" and b"~{" in data or codec == "iso2022" and b"\x0e" in data
    if shifted and (data.isascii() or codec == "iso2022" and utf8(data) is None):
        return decode_shifted(data, codec)
    if data.isascii():
        return data.decode("ascii")
    return decode_eight_bit(data, "" if codec in ("utf-7", "hz", "iso2022") else codec, "")


def decode_eight_bit(data, codec, hint):
    unicode_text = utf8(data)
    if unicode_text is not None and utf8_is_meant(unicode_text, data, codec):
        return undo_double_encoding(unicode_text)
    if codec in EAST_ASIAN:
        return decode_east_asian(data, codec)
    text = damaged_utf8(data, 0 if codec == "utf-8" else 4)
    if text is not None:
        return text
    codec = "" if codec == "utf-8" else codec
    found = guess(data, codec, hint) if codec in ("", "cp1252", "iso8859-15") else None
    if found:
        return found[0]
    try:
        return data.decode(codec or "cp1252")
    except UnicodeDecodeError:
        return data.decode("latin-1" if codec in ("", "cp1252") else codec, "replace")


def utf8(data):
    """Text of data that is UTF-8 (if cut, up to its last whole character), else None."""
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError as error:
        head = data[:error.start]
        cut = error.reason == "unexpected end of data" and not head.isascii()
        return head.decode("utf-8") if cut else None


def utf8_is_meant(text, data, codec):
    """Whether valid UTF-8 is that, against a label: two GBK characters can be it by chance, not several."""
    if codec not in EAST_ASIAN or len(re.findall(rb"[\xe0-\xf4][\x80-\xbf]{2,3}", data[:4000])) >= 3:
        return True
    declared = strictly(data, codec)
    return declared is None or likeness(text, "") > likeness(declared, codec)


def damaged_utf8(data, least):
    """Text of data that is UTF-8 but for some bytes: at least that many wide characters, few bad bytes; else None."""
    text = data.decode("utf-8", "replace")
    bad = text.count("\ufffd")
    wide = sum(c > "\u024f" for c in text) - bad
    if wide < least or wide and bad > wide:
        return None
    text = data.decode("utf-8", "replace_lone")
    return text if text.count("\ufffd") * 4 <= wide else None


def decode_east_asian(data, codec):
    """Declared two-byte sets; another one only where the declared reading is no writing at all."""
    text = strictly(data, codec)
    if text is None and codec == "euc_jp":
        text = euc_by_cp932(data)
    broken = text is None
    codec = "big5hkscs" if codec == "cp950" else codec
    text = data.decode(codec, "replace_bad") if broken else text
    score = likeness(text, codec, data)
    if score < 0.12 and (broken or len(text) >= 20):
        other = damaged_utf8(data, 4)
        if other is not None:
            return other
        other = guess(data)
        if other and other[1] > max(0.3, 3 * score):
            return other[0]
    return text


def euc_by_cp932(data):
    """EUC-JP with the vendors' rows (circled digits, 髙), which Python's codec lacks; None when it isn't that."""
    def shift(match):
        return match.group(1) or jis_to_sjis(match.group(2).translate(LOW_BITS))
    return strictly(re.sub(rb"\x8e([\xa1-\xdf])|((?:[\xa1-\xfe][\xa1-\xfe])+)", shift, data), "cp932")


def repair_surrogates(text):
    """Joins surrogate pairs and drops halves, which no UTF-8 answer could hold."""
    return text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace")


def undo_double_encoding(text):
    """UTF-8 that was taken for windows-1252 and encoded once more."""
    if not any(map(text.__contains__, "Ãâãäåæçèéêëìíîï")) or max(text) > "\u2122":
        return text
    try:
        once = b"".join(c.encode("latin-1" if c < "\u0100" else "cp1252") for c in text).decode("utf-8")
    except UnicodeError:
        return text
    return once if sum(c > "\xff" for c in once) >= 2 else text


def nfc(text):
    """Normal form C in linear time: endless runs of combining marks, which cost their square, are cut."""
    if text.isascii():
        return text
    from unicodedata import normalize
    if max(map(len, text.split("\n"))) <= 500:
        return normalize("NFC", text)
    pieces, start = [], 0
    while start < len(text):
        end = start + 400
        while end < min(len(text), start + 500) and not (text[end] < "\u0300" or "\u3400" <= text[end] <= "\u9fff"):
            end += 1
        pieces.append(normalize("NFC", text[start:end]))
        start = end
    return "".join(pieces)


# ----------------------------------------------------------------------------------- header values


def decode_words(value, hint=""):
    """Text of a field's value with encoded words (RFC 2047), in quotes or broken inside characters as well."""
    if b"=?" not in value:
        return decode_text(value, b"", hint)
    payload = rb"(.{0,998}?)" if value.count(b"=?") <= 64 else rb"([^?]*)"
    texts, label, pending, end = [], b"", b"", 0
    for word in re.finditer(rb"=\?([^?\s]{1,80})\?\s*([BbQq])\s*\?" + payload + rb"(?:\?=|$)", value, re.S):
        between, charset = value[end:word.start()], word.group(1).lower()
        apart = not end or between.strip()
        if apart or charset != label:
            texts += decode_text(pending, label, hint), decode_text(between, b"", hint) if apart else ""
            label, pending = charset, b""
        text = word.group(3)
        pending += decode_base64(text) if word.group(2) in b"Bb" else binascii.a2b_qp(text, header=True)
        end = word.end()
    return "".join(texts) + decode_text(pending, label, hint) + decode_text(value[end:], b"", hint)


def parameter_items(value):
    """(name, value) pairs behind the first ";" of a field's value; quotes may be missing or stand inside."""
    at = value.find(b";")
    for _ in range(200):
        equals = value.find(b"=", at)
        if at < 0 or equals < 0:
            return
        name = value[at + 1:equals].rpartition(b";")[2].strip().lower()
        start = re.compile(rb"\s*").match(value, equals + 1).end()
        if value[start:start + 1] == b'"':
            end = closing_quote(value, start + 1)
            yield name, re.sub(rb'\\(["\\])', rb"\1", value[start + 1:end])
            at = value.find(b";", end)
        else:
            at = value.find(b";", start)
            yield name, (value[start:at] if at >= 0 else value[start:]).strip(b" \t'\"")


def closing_quote(value, start):
    first = at = value.find(b'"', start)
    while at >= 0:
        escaped = value[at - 1:at] == b"\\" and value[at - 2:at] != b"\\\\"
        if not escaped and re.compile(rb"\s*(?:;|$)").match(value, at + 1):
            return at
        at = value.find(b'"', at + 1)
    if first >= 0:
        return first
    semicolon = value.find(b";", start)
    return len(value) if semicolon < 0 else semicolon


def unpercent(value):
    return re.sub(rb"%([0-9A-Fa-f]{2})", lambda match: bytes((int(match.group(1), 16),)), value)


@lru_cache(maxsize=512)
def parse_field(value):
    """Main value in lower case and its parameters: name to (bytes, charset label or None).

    RFC 2231 pieces are joined in their order; an extended parameter wins over the plain one.
    """
    main = value.partition(b";")[0].strip(b" \t\r\n\"'").lower()
    parameters, pieces = {}, {}
    for name, text in parameter_items(value):
        base, star, rest = name.partition(b"*")
        if not star:
            parameters.setdefault(base, (text, None))
        else:
            index = rest.rstrip(b"*")
            order = int(index) if index.isdigit() and len(index) < 6 else 0
            pieces.setdefault(base, {}).setdefault(order, (text, rest.endswith(b"*") or not rest))
    parameters.update((base, join_pieces(parts)) for base, parts in pieces.items())
    return main, parameters


def join_pieces(parts):
    label, joined = None, b""
    for order in sorted(parts):
        text, extended = parts[order]
        if extended and not joined and label is None and text.count(b"'") >= 2:
            label, _, text = text.split(b"'", 2)
        joined += unpercent(text) if extended else text
    return joined, label


def parameter(parameters, name):
    return parameters[name][0] if name in parameters else b""


def decode_name(value, label, hint):
    """A file name as its sender saw it: RFC 2231, RFC 2047 inside quotes, bare bytes; never a path."""
    tagged = re.match(rb"([A-Za-z][\w.-]{1,30})'[A-Za-z-]{0,10}'(?=.*%[0-9A-Fa-f]{2})", value) if not label else None
    if tagged:
        value, label = unpercent(value[tagged.end():]), tagged.group(1)
    name = decode_text(value, label, hint) if label and b"=?" not in value else decode_words(value, hint)
    name = re.sub("[\u00ad\u200e\u200f\u202a-\u202e\u2066-\u2069\ufeff]", "", name)
    name = re.sub(r"[\x00-\x1f\x7f-\x9f]+|\s", " ", name).strip(' "')
    if re.match(r"[A-Za-z]:[\\/¥]|[\\/]|\.\.?[\\/]", name):
        name = re.split(r"[\\/¥]", name)[-1]
    return nfc(name)


# ------------------------------------------------------------------------------ transfer encodings

BASE64_DIGITS = b"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"
BASE64_NOISE = bytes(set(range(256)) - set(BASE64_DIGITS + b"-_"))
BASE64_SIGNS = bytes.maketrans(b"-_", b"+/")


def decode_base64(raw):
    """Bytes of base64 as mail carries it: noise skipped, padding missing, more base64 (but no text) behind padding."""
    padding = raw.find(b"=")
    if padding < 0 or not raw[padding:].strip(b"=\r\n\t "):
        try:
            return binascii.a2b_base64(raw)
        except binascii.Error:
            pass
    runs = re.split(rb"=[=\s]*", raw)
    more = next((i for i, run in enumerate(runs) if i and run.translate(None, BASE64_DIGITS + b"\r\n\t")), len(runs))
    return b"".join(map(decode_base64_run, runs[:more]))


def decode_base64_run(run):
    run = run.translate(BASE64_SIGNS, BASE64_NOISE)
    run = run[:-1] if len(run) % 4 == 1 else run
    return binascii.a2b_base64(run + b"=" * (-len(run) % 4))


def decode_base64_text(raw):
    """A text body in base64; what a mailing list wrote behind it, or all of it where the label lies, is text."""
    lines = re.match(rb"(?:[A-Za-z0-9+/]+=*[ \t]*\r*\n|[ \t\r]*\n)*", raw).end()
    rest = raw[lines:].strip()
    if len(rest.translate(None, BASE64_DIGITS + b"=\r\n\t")) * 20 <= len(rest) and not rest.startswith(b"--"):
        return decode_base64(raw)
    return decode_base64(raw[:lines]) + b"\n" + rest if lines > 40 else raw


def decode_quoted_printable(raw):
    if b"= " in raw or b"=\t" in raw:
        raw = re.sub(rb"=[ \t]+(\r?\n)", rb"=\1", raw)
    return binascii.a2b_qp(raw)


def decode_uu(lines):
    decoded = []
    for line in lines:
        size = (((line[0] - 32) & 63) * 4 + 5) // 3 if line else 0
        try:
            decoded.append(binascii.a2b_uu(line))
        except binascii.Error:
            try:
                decoded.append(binascii.a2b_uu(line[:size]))
            except binascii.Error:
                continue
    return b"".join(decoded)


def uu_files(data):
    """(start, end, name, lines) of the uuencoded files inside a text body."""
    at = 0 if data.startswith(b"begin ") else data.find(b"\nbegin ") + 1
    while data.startswith(b"begin ", at):
        head = re.compile(rb"begin [0-7]{3,4} ([^\r\n]{1,255})\r?\n([!-`])([ -`]*)\r?\n").match(data, at)
        after = at + 1
        if head and ((head.group(2)[0] - 32) & 63) * 4 // 3 <= len(head.group(3)) + 3:
            after = data.find(b"\nend", at)
            if after < 0:
                return
            yield at, after + 4, head.group(1), data[data.find(b"\n", at) + 1:after + 1].splitlines()
        at = data.find(b"\nbegin ", after) + 1
        if not at:
            return


# --------------------------------------------------------------------------------------- structure

# A line of blanks alone ends the header where what follows can't be more of it.
BLANK_LINE = re.compile(rb"\n(?:\r*|[ \t][ \t\r]*(?=\n(?![ \t]|[!-9;-~]+:)))\n")
FIELDS = re.compile(rb"\n(?=[cdfstx])(content-(?:type|transfer-encoding|disposition|id)|x-apple-content-length|from|to"
                    rb"|subject|date)[ \t]*:[ \t]*([^\n]*(?:\n[ \t][^\n]*)*)", re.I)
NO_FIELD = re.compile(rb"\n(?![!-9;-~]+[ \t]*:|[ \t\r\n])")
KNOWN_FIELD = (rb"(?i)\n(?:content-|mime-version|from|to|cc|subject|date|received|message-id|return-path|reply-to"
               rb"|delivered-to|x-)[^\s:]*[ \t]*:")
FIRST_FIELD = rb"\s*[!-9;-~]+:"
LIKELY_BOUNDARY = rb"(?i)\n--([^\r\n]{1,200}?)[ \t]*\r?\n(?:content-[a-z-]+[ \t]*:|\r?\n)"
BOUNDARY_WINDOW = 1 << 16
BARE_TYPES = {b"text": "text/plain", b"plain": "text/plain", b"html": "text/html", b"text/": "text/plain"}
MESSAGE_TYPES = ("message/rfc822", "message/global", "message/news")
ENCODED = (b"base64", b"quotedprintable")


@lru_cache(maxsize=512)
def media_type(main):
    kind = re.match(rb"\s*\"?([\w.+-]+/[\w.+-]+)", main)
    return kind.group(1).decode("latin-1") if kind else BARE_TYPES.get(main)


class Part:
    """One entity of a message: its fields, and its body as a range of data or as the parts inside.

    data has a line feed in front of the first field, so that every field begins behind one.
    """

    __slots__ = ("fields", "kind", "parameters", "disposition", "named", "encoding", "data", "start", "end", "parts")

    def __init__(self, data, default="text/plain"):
        self.fields, self.parameters, self.named, self.parts = {}, {}, {}, None
        self.kind, self.disposition, self.encoding = default, b"", b""
        self.data, self.start, self.end = data, 0, 0

    def take_fields(self, fields):
        self.fields = fields
        if b"content-type" in fields:
            main, self.parameters = parse_field(fields[b"content-type"])
            self.kind = media_type(main) or self.kind
        if b"content-disposition" in fields:
            self.disposition, self.named = parse_field(fields[b"content-disposition"])
        if b"content-transfer-encoding" in fields:
            word = re.match(rb"[\s\"']*([\w.-]+)", fields[b"content-transfer-encoding"])
            self.encoding = word.group(1).lower().translate(None, b"-_.") if word else b""

    @property
    def is_attachment(self):
        return self.disposition.startswith(b"attach")

    @property
    def is_message(self):
        return self.kind in MESSAGE_TYPES

    @property
    def charset(self):
        return re.split(rb"[\s(;]", parameter(self.parameters, b"charset").strip())[0]

    def raw(self):
        return self.data[self.start:self.end]

    def payload(self, text=False):
        """The body without its transfer encoding."""
        raw = self.raw()
        if self.encoding == b"base64":
            return decode_base64_text(raw) if text else decode_base64(raw)
        if self.encoding == b"quotedprintable":
            return decode_quoted_printable(raw)
        if self.encoding in (b"xuuencode", b"uuencode", b"xuue", b"uue"):
            return next((decode_uu(lines) for _, _, _, lines in uu_files(raw)), raw)
        return raw


def read_fields(data, start, end):
    """The fields that matter of a header block, the first of each name, unfolded; data[start] is a line feed."""
    fields = {}
    for match in FIELDS.finditer(data, start, min(end, start + MAX_HEADER)):
        name = match.group(1).lower()
        if not fields.get(name):
            value = match.group(2)[:MAX_FIELD]
            fields[name] = (re.sub(rb"\r*\n[ \t]+", b" ", value) if b"\n" in value else value).strip()
    return fields


class Scanner:
    """Finds the parts of a message in one pass over its lines that begin with "--".

    The boundaries of all enclosing multiparts are open at a time, so that an outer one ends what an
    inner one left unfinished. odd: the message broke the rules in a way that another reading may
    serve better. capped: a limit left parts out.
    """

    def __init__(self, data, level=0, count=0):
        self.data, self.level, self.count = data, level, count
        self.open = []        # multiparts at work: boundary, part, whether it has ended, level
        self.boundaries = {}  # how many of them have a boundary
        self.messages = []    # messages at work, each with the number of multiparts around it
        self.leaf = self.awaited = None
        self.odd = self.capped = False
        self.guesses = 16

    def run(self):
        root, data, at = Part(self.data), self.data, -1
        self._await(root, 0, self.level)
        while True:
            at = data.find(b"\n--", at + 1)
            if at < 0:
                break
            while self.awaited and self._read_header(at):
                pass
            if self.boundaries and not self._delimiter(at):
                break
        while self.awaited and self._read_header(len(data)):
            pass
        self._finish(len(data))
        self._unwind(0, len(data))
        return root

    def _await(self, part, at, level):
        """The fields of part begin behind the line feed data[at]."""
        self.count += 1
        self.awaited, self.header_start, self.searched, self.level = part, at, at, level

    def _read_header(self, limit):
        """Reads the awaited header if it ends before limit; False while its end isn't seen."""
        blank = BLANK_LINE.search(self.data, self.searched, limit + 1)
        if blank:
            self._enter(blank.start(), blank.end())
        elif limit == len(self.data):
            self._enter(limit, limit)
        else:
            self.searched = limit
            return False
        return True

    def _enter(self, end, body):
        """The awaited header ends at data[end]; opens the body as what the header says it is."""
        part, start, self.awaited = self.awaited, self.header_start, None
        wrong = NO_FIELD.search(self.data, start, end)
        if wrong and not re.compile(KNOWN_FIELD).search(self.data, wrong.start(), end):
            self.odd = True
            end, body = wrong.start(), wrong.start() + 1
        part.take_fields(read_fields(self.data, start, end))
        part.start, part.end = body, len(self.data)
        self.leaf = part
        if self.level >= MAX_DEPTH and part.kind.startswith(("multipart/", "message/")):
            self.capped, part.kind = True, "application/octet-stream"
        elif part.kind.startswith("multipart/"):
            self._open_multipart(part)
        elif part.is_message and (part.encoding not in ENCODED or re.compile(FIRST_FIELD).match(self.data, body)):
            part.parts, part.encoding = [Part(self.data)], b""
            self.messages.append((part, len(self.open)))
            self._await(part.parts[0], max(body - 1, 0), self.level + 1)

    def _open_multipart(self, part):
        boundary = parameter(part.parameters, b"boundary").rstrip()
        before = max(part.start - 1, 0)
        window = before + BOUNDARY_WINDOW
        if not boundary or self.data.find(b"\n--" + boundary, before, window) < 0:
            self.odd, self.guesses = True, self.guesses - 1
            likely = self.guesses >= 0 and re.compile(LIKELY_BOUNDARY).search(self.data, before, window)
            if likely and likely.group(1) not in self.boundaries:
                boundary = likely.group(1)
        if boundary:
            part.parts, self.leaf = [], None
            self.open.append([boundary, part, False, self.level])
            self.boundaries[boundary] = self.boundaries.get(boundary, 0) + 1

    def _delimiter(self, at):
        """Acts on the line behind data[at] if it delimits an open multipart; False when there are too many parts."""
        end = self.data.find(b"\n", at + 3)
        end = len(self.data) if end < 0 else end
        line = self.data[at + 3:end].rstrip(b" \t\r") if end - at < 1000 else b""
        closing = line not in self.boundaries
        if closing:
            line, _, junk = line.rpartition(b"--")
            if line not in self.boundaries or b" " in junk:
                return True
        while self.awaited:
            self._enter(at, at)
        self._finish(at)
        multipart = self._innermost(line, at)
        multipart[2] = closing
        if closing:
            return True
        CLOCK.check()
        if self.count >= MAX_PARTS:
            self.capped = True
            return False
        part = Part(self.data, "message/rfc822" if multipart[1].kind == "multipart/digest" else "text/plain")
        multipart[1].parts.append(part)
        self._await(part, end, multipart[3] + 1)
        return True

    def _innermost(self, boundary, at):
        """The innermost multipart with this boundary that hasn't ended, else the innermost; ends those inside it."""
        index = len(self.open) - 1
        if self.open[index][0] != boundary or self.open[index][2]:
            matching = [i for i, multipart in enumerate(self.open) if multipart[0] == boundary]
            index = max((i for i in matching if not self.open[i][2]), default=matching[-1])
        self._unwind(index + 1, at)
        return self.open[index]

    def _unwind(self, size, at):
        """Ends at data[at] what stands inside the first size multiparts at work."""
        while len(self.open) > size:
            boundary, multipart, _, _ = self.open.pop()
            self.boundaries[boundary] -= 1
            if not self.boundaries[boundary]:
                del self.boundaries[boundary]
            self._end(multipart, at)
        while self.messages and self.messages[-1][1] >= size:
            self._end(self.messages.pop()[0], at)

    def _finish(self, at):
        """The body at work ends before the line feed data[at]."""
        part, self.leaf, self.awaited = self.leaf, None, None
        if part:
            self._end(part, at)

    def _end(self, part, at):
        before = at - 1 if at < len(self.data) and self.data[at - 1:at] == b"\r" else at
        part.end = max(part.start, before)
        multipart = part.kind.startswith("multipart/")
        if part.parts or not multipart and not part.is_message:
            return
        part.parts = None
        if part.encoding in ENCODED and self.level < MAX_DEPTH and self.count < MAX_PARTS:
            self._scan_encoded(part, multipart)
        elif multipart:
            part.kind = "text/plain"

    def _scan_encoded(self, part, multipart):
        """A multipart or a message that is encoded as a whole, against the rules."""
        data = b"\n" + part.payload()
        if multipart:
            data = b"\nContent-Type: " + part.fields[b"content-type"] + b"\n" + data
        inner = Scanner(data, self.level + 1, self.count)
        root = inner.run()
        self.count, self.capped = inner.count, self.capped or inner.capped
        if not multipart:
            part.parts = [root]
        elif root.parts:
            part.parts = root.parts
        else:
            part.kind, part.data, part.start, part.end, part.encoding = "text/plain", data, root.start, root.end, b""


def full_parse(data):
    """The parts as the standard library's parser sees them, for mail that the scanner finds odd."""
    from email import message_from_bytes
    return part_of(message_from_bytes(data[1:]), 0)


def part_of(message, depth):
    CLOCK.check()
    fields = {}
    for name, value in message.raw_items():
        name = name.lower().encode("utf-8", "surrogateescape")
        value = re.sub(r"\r*\n[ \t]+", " ", value).strip().encode("utf-8", "surrogateescape")
        fields.setdefault(name, value[:MAX_FIELD])
    part = Part(b"", message.get_default_type())
    part.take_fields(fields)
    part.encoding = b""
    body = message.get_payload()
    if part.kind == "message/delivery-status" and isinstance(body, list):
        part.data = b"".join(child.as_bytes() for child in body)
    elif isinstance(body, list):
        part.parts = [part_of(child, depth + 1) for child in body] if depth < MAX_DEPTH else None
    else:
        part.data = message.get_payload(decode=True) or b""
    part.end = len(part.data)
    return part


# -------------------------------------------------------------------------------------------- html

# Layout that the writer puts between texts; text itself holds no such characters any more.
BREAK, BLOCK, PARAGRAPH, SECTION, ROW, CELL = "\x01", "\x02", "\x03", "\x04", "\x05", "\x06"
BULLET, BULLET_END, HARD_SPACE = "\x0e", "\x0f", "\x10"
SIGNATURE_ON, SIGNATURE_OFF, QUOTE_ON, QUOTE_OFF = "\uf0f0", "\uf0f2", "\uf0f1", "\uf0f3"

LAYOUT = {name: layout for layout, names in {
    BREAK: "br", CELL: "td th", ROW: "tr thead tbody tfoot caption",
    PARAGRAPH: "p h1 h2 h3 h4 h5 h6 dl blockquote form hr pre",
    BLOCK: "div dt dd center address header footer section article main nav aside figure figcaption fieldset legend"
           " option body li"}.items() for name in names.split()}
UNSHOWN = frozenset("style script title template xml svg".split())
HIDEABLE = frozenset("div span p td tr table tbody font center a b i u strong em li ul ol section h1 h2 h3 h4 h5 h6"
                     " label button pre".split())
STATEFUL = frozenset("a li ol ul table img pre".split())

TAG = re.compile(r"/?[a-zA-Z][^\s/>]*")
HIDING = re.compile(r"display\s*:\s*none|visibility\s*:\s*hidden|opacity\s*:\s*0\s*(?:[;!]|$)", re.I)
NO_HEIGHT = r"(?i)(?<![-\w])(?:max-)?height\s*:\s*0(?:px)?\s*(?:[;!]|$)"
TINY = re.compile(r"font-size\s*:\s*0(?:\.0+)?(?:px|pt|em|%)?\s*(?:[;!]|$)", re.I)
KEEPS_LINES = r"white-space\s*:\s*(?:pre|break-spaces)"
OUTLOOK_HEAD = r"(?i)border:\s*none;\s*border-top:\s*solid #(?:E1E1E1|B5C4DF) 1\.0pt"

# Classes and identifiers by which known clients mark quotes, quotes that last to the end, signatures.
QUOTES = frozenset("gmail_quote gmail_quote_container yahoo_quoted protonmail_quote tutanota_quote zmail_extra"
                   " moz-forward-container moz-cite-prefix isreplycontent ntes-mailmaster-quote"
                   " mail-editor-reference-message-container olk_src_body_section".split())
QUOTE_STARTS = frozenset("divrplyfwdmsg x_divrplyfwdmsg".split())
SIGNATURES = frozenset("gmail_signature apple-mail-signature applemailsignature moz-signature protonmail_signature_block"
                       " tutanota_signature zmail_signature ms-outlook-mobile-signature spneditorsign_app"
                       " ntes-mailmaster-signature".split())
KNOWN_MARKUP = (b"_quote", b"cite", b"signature", b"zmail_", b"moz-forward", b"isreplycontent", b"mailmaster", b"rplyfwdmsg",
                b"reference-message", b"olk_src_body", b"editorsign", b"border-top:solid #")


def attribute(head, name):
    match = re.search(r"(?i)[\s\"'/]" + name + r"\s*=\s*(?:\"([^\"]*)|'([^']*)|([^\s\"'>]+))", head)
    return (match.group(1) or match.group(2) or match.group(3) or "")[:2000] if match else ""


class HtmlText:
    """Writes what a reader would see of one HTML document, block by block.

    The document is cut at "<" once; each piece is a tag and the text behind it. What isn't shown is
    skipped to its end, or shown where it has none.
    """

    def __init__(self, html):
        self.pieces = html.split("<")
        self.out = [self.pieces[0]]
        self.at = 1
        self.known = {}       # tags seen before: what they write, and their name
        self.regions = []     # open quotes, signatures, preformatted elements: name, depth, end mark, kept lines
        self.watched = None   # the name of the innermost region
        self.preformatted = self.tables = self.images = 0
        self.lists = []       # the next number of each open list, 0 for bullets
        self.anchors = []
        self.endless = set()  # elements found to have no end

    def text(self):
        pieces, out, known = self.pieces, self.out, self.known
        while self.at < len(pieces):
            piece = pieces[self.at]
            self.at += 1
            head, _, text = piece.partition(">")
            hit = known.get(head)
            if hit is None or hit[1] == self.watched or self.preformatted:
                text = self._tag(piece, head, text)
            else:
                out.append(hit[0])
            if text:
                out.append(text)
        out.extend(region[2] for region in reversed(self.regions))
        return arrange("".join(out))

    def _tag(self, piece, head, text):
        """Writes what the tag stands for; returns the text behind it."""
        if not self.at & 0xFF:
            CLOCK.check()
        match = TAG.match(head)
        if not match:
            return self._keep_lines(self._no_tag(piece, head, text))
        name = match.group().lower()
        if "@" in name or name in ("http:", "https:"):
            return "<" + piece
        for quote in "\"'":
            if head.count(quote) & 1 and quote in text and re.search("=\\s*" + quote + "[^" + quote + "]*$", head):
                head, text = reopened(head, text, quote)
        if name[0] == "/":
            self._close(name[1:], head)
        elif name in UNSHOWN:
            return self._skip_to_end(name)
        else:
            hiding = hiding_of(name, head) if len(head) > len(name) and name not in self.endless else ""
            if hiding and self._skip_hidden(name, hiding):
                return ""
            self._open(name, head, cached=not hiding)
        return self._keep_lines(text)

    def _open(self, name, head, cached):
        around = len(self.regions)
        mark = self._enter_region(name, head) if len(head) > len(name) else ""
        token = self._stateful(name, head) if name in STATEFUL else LAYOUT.get(name, "")
        self.out.append(mark + token)
        if len(self.regions) > around:
            return
        if self.watched == name:
            self.regions[-1][1] += 1
        if cached and name not in STATEFUL and len(self.known) < 500:
            self.known[head] = (token, name)

    def _close(self, name, head):
        self.out.append(self._stateful_end(name) if name in STATEFUL else LAYOUT.get(name, ""))
        if self.watched == name:
            self.regions[-1][1] -= 1
            if not self.regions[-1][1]:
                _, _, end_mark, kept = self.regions.pop()
                self.out.append(end_mark)
                self.preformatted -= kept
                self.watched = self.regions[-1][0] if self.regions else None
        elif name not in STATEFUL and len(self.known) < 500:
            self.known[head] = (self.out[-1], name)

    def _keep_lines(self, text):
        return text.replace(" ", HARD_SPACE).replace("\n", BREAK) if self.preformatted else text

    def _no_tag(self, piece, head, text):
        if head[:3] == "!--":
            return self._skip_comment(piece, text)
        if head[:1] in ("!", "?"):
            return text
        return text if head == "/" else "<" + piece

    def _skip_comment(self, piece, text):
        if piece[3:4] == ">" or piece[3:5] == "->":
            return text
        if "-->" in piece:
            return piece.split("-->", 1)[1]
        if "!--" not in self.endless:
            for at in range(self.at, len(self.pieces)):
                if "-->" in self.pieces[at]:
                    self.at = at + 1
                    return self.pieces[at].split("-->", 1)[1]
        self.endless.add("!--")
        return text

    def _skip_to_end(self, name):
        end = "/" + name
        if name not in self.endless:
            for at in range(self.at, len(self.pieces)):
                if self.pieces[at][:len(end)].lower() == end:
                    self.at = at + 1
                    return self._keep_lines(self.pieces[at].partition(">")[2])
        self.endless.add(name)
        return ""

    def _skip_hidden(self, name, hiding):
        """Goes behind a hidden element; False where it has no end, or sets letters of some size again."""
        depth, end = 1, "/" + name
        last = len(self.pieces) if hiding == "all" else min(len(self.pieces), self.at + 50)
        for at in range(self.at, last):
            low = self.pieces[at][:len(end) + 1].lower()
            if low.startswith(end) and not low[len(end):].isalnum():
                depth -= 1
            elif low.startswith(name) and not low[len(name):len(name) + 1].isalnum():
                depth += 1
            elif hiding == "tiny" and "font-size" in self.pieces[at]:
                return False
            if not depth:
                self.at = at + 1
                self.out += LAYOUT.get(name, ""), self._keep_lines(self.pieces[at].partition(">")[2])
                return True
        if hiding == "all":
            self.endless.add(name)
        return False

    def _stateful(self, name, head):
        if name == "a":
            self.anchors.append((len(self.out), self.images, attribute(head, "href")))
            return ""
        if name == "img":
            self.images += 1
            alt = attribute(head, "alt").strip()
            return " " + alt + " " if alt else ""
        if name == "li":
            return BLOCK + self._bullet()
        if name == "table":
            self.tables += 1
            return SECTION if self.tables == 1 else ROW
        if name == "pre":
            self.preformatted += 1
            return PARAGRAPH
        start = attribute(head, "start")
        number = int(start) if re.fullmatch("[0-9]{1,6}", start) else 1
        self.lists.append(number if name == "ol" else 0)
        return PARAGRAPH if len(self.lists) == 1 else BLOCK

    def _stateful_end(self, name):
        if name == "a":
            return self._address()
        if name == "table":
            self.tables = max(0, self.tables - 1)
            return ROW if self.tables else SECTION
        if name in ("ul", "ol"):
            self.lists[-1:] = []
            return BLOCK if self.lists else PARAGRAPH
        if name == "pre":
            self.preformatted = max(0, self.preformatted - 1)
        return LAYOUT.get(name, "")

    def _bullet(self):
        sign = "-"
        if self.lists and self.lists[-1]:
            sign = str(self.lists[-1]) + "."
            self.lists[-1] += 1
        indent = HARD_SPACE * 2 * min(len(self.lists) - 1, 10)
        return BULLET + indent + sign + HARD_SPACE + BULLET_END

    def _address(self):
        """A link shows its text; its address only where it would show nothing at all."""
        if not self.anchors:
            return ""
        at, images, address = self.anchors.pop()
        if self.images > images or len(self.out) - at > 50 or "".join(self.out[at:]).strip(" \n\r\t\xa0\x01\x02"):
            return ""
        return address if address[:4].lower() == "http" and len(address) < 300 else ""

    def _enter_region(self, name, head):
        """The mark where a quote or a signature of a known client begins, "" for anything else."""
        low = head.lower()
        if "white-space" in low and name in HIDEABLE and re.search(KEEPS_LINES, low):
            self.preformatted += len(self.regions) < MAX_DEPTH
            return self._open_region(name, "", True)
        if "class" not in low and "id" not in low and "cite" not in low and "border-top" not in low:
            return ""
        kind = region_kind(name, head)
        if kind == "signature":
            return self._open_region(name, SIGNATURE_OFF)
        if kind == "quote":
            return self._open_region(name, QUOTE_OFF)
        if kind == "quote to the end" and not any(region[2] == QUOTE_OFF for region in self.regions):
            return self._open_region("", QUOTE_OFF)
        return ""

    def _open_region(self, name, end_mark, kept=False):
        if len(self.regions) >= MAX_DEPTH:
            return ""
        self.regions.append([name, 1, end_mark, kept])
        self.watched = name
        return {SIGNATURE_OFF: SIGNATURE_ON, QUOTE_OFF: QUOTE_ON}.get(end_mark, "")


def reopened(head, text, quote):
    """Takes into a tag the rest of a quoted attribute that holds ">"."""
    value, _, rest = text.partition(quote)
    more, close, behind = rest.partition(">")
    return (head + ">" + value + quote + more, behind) if close and len(value) < 2000 else (head, text)


def hiding_of(name, head):
    """"all" for an element that isn't shown, "tiny" for one whose own letters have no size, else ""."""
    if name not in HIDEABLE:
        return ""
    low = head.lower()
    if "style" in low:
        style = attribute(head, "style")
        if HIDING.search(style) or "overflow" in style and re.search(NO_HEIGHT, style):
            return "all"
        if TINY.search(style):
            return "tiny"
    if "hidden" in low and re.search(r"\shidden(?:[\s=/]|$)", re.sub(r"\"[^\"]*\"?|'[^']*'?", "", low)):
        return "all"
    return ""


def region_kind(name, head):
    identity = attribute(head, "id")
    names = (attribute(head, "class") + " " + identity).lower().split()
    if name == "blockquote" and attribute(head, "type").lower() == "cite" or not QUOTES.isdisjoint(names):
        return "quote"
    if not SIGNATURES.isdisjoint(names) or identity == "Signature":
        return "signature"
    if not QUOTE_STARTS.isdisjoint(names) or name == "div" and re.search(OUTLOOK_HEAD, attribute(head, "style")):
        return "quote to the end"
    return ""


ENTITIES = {"nbsp": " ", "amp": "&", "lt": "<", "gt": ">", "quot": '"', "apos": "'", "copy": "©", "reg": "®",
            "hellip": "…", "mdash": "—", "ndash": "–", "lsquo": "‘", "rsquo": "’", "ldquo": "“", "rdquo": "”",
            "bull": "•", "middot": "·", "trade": "™", "times": "×", "raquo": "»", "laquo": "«", "zwnj": ""}
ENTITY = re.compile(r"&(?:#[xX]([0-9a-fA-F]{1,8})|#([0-9]{1,9})|([a-zA-Z][a-zA-Z0-9]{1,31}));?")
INVISIBLE = re.compile("[\u00ad\u034f\u200b\u200e\u200f\u2060\ufeff]|\u200c(?=[\\s\u034f\u200c]|$)")
GAP = re.compile(" ?[\x01-\x06][\x01-\x06 ]*")


def entity(match):
    name = match.group(3)
    if name:
        return ENTITIES[name] if name in ENTITIES else rare_entity(name, match.group())
    code = int(match.group(1), 16) if match.group(1) else int(match.group(2))
    if 0x80 <= code <= 0x9F:
        return bytes((code,)).decode("cp1252", "ignore")
    if code < 32 or code == 0x7F or 0xF0F0 <= code <= 0xF0F3:
        return " " if code in (9, 10, 13) else ""
    return chr(code) if code <= 0x10FFFF else "\ufffd"


def unescaped(text):
    if "&" in text:
        text = ENTITY.sub(entity, text)
    if text.isascii():
        return text
    return INVISIBLE.sub("", repair_surrogates(text) if re.search("[\ud800-\udfff]", text) else text)


def rare_entity(name, written):
    from html.entities import html5
    return html5.get(name + ";" if written.endswith(";") else name, written)


@lru_cache(maxsize=1024)
def gap(run):
    """Line ends (or a tab between cells) for the layout between two texts."""
    breaks = run.count(BREAK)
    if SECTION in run or breaks > 1:
        return "\n\n"
    if ROW in run:
        return "\n"
    if CELL in run:
        return "\t"
    return "\n\n" if PARAGRAPH in run or breaks and BLOCK in run.partition(BREAK)[0] else "\n"


def arrange(text):
    """Lines of text from what HtmlText wrote."""
    text = unescaped(text)
    text = re.sub(r"[ \t\r\n\f\v\u00a0\u2002\u2003\u2009]+", " ", text) if "\u3000" in text else " ".join(text.split())
    if BULLET in text:
        bullet = BULLET + "([^" + BULLET_END + "]*)" + BULLET_END + "[\x01-\x06 ]*"
        text = re.sub(bullet, r"\1", re.sub(bullet + "(?=" + BULLET + "|$)", "", text))
    text = GAP.sub(lambda match: gap(match.group().replace(" ", "")[:64]), text)
    return text.replace(HARD_SPACE, " ").strip("\n\t ")


def place_marks(text):
    """Puts the two in-band markers where a known client's signature and closing quote begin.

    A quote counts only when nothing but quotes and signatures follows it: behind its marker the
    reader folds everything away, and an answer written below or between quotes must not go with it.
    """
    pieces, depth, signed, main = [], 0, False, -1
    for piece in re.split("([\uf0f0-\uf0f3])", text):
        if piece in (QUOTE_ON, QUOTE_OFF):
            depth = max(0, depth + (1 if piece == QUOTE_ON else -1))
        elif piece in (SIGNATURE_ON, SIGNATURE_OFF):
            signed = piece == SIGNATURE_ON
        else:
            main = len(pieces) if piece.strip() and not depth and not signed else main
            pieces.append((piece, depth, signed))
    if main < 0:
        return re.sub("[\uf0f0-\uf0f3]", "", text)
    written, kind = [re.sub("\n{3,}", "\n\n", "".join(piece for piece, _, _ in pieces[:main + 1])).strip("\n")], (0, False)
    for piece, depth, signed in pieces[main + 1:]:
        if not piece.strip():
            continue
        if signed and not kind[1]:
            written.append(SIGNATURE_MARK)
        elif not signed and (kind[1] or depth > kind[0]):
            written.append(QUOTE_MARK)
        written.append(piece.strip("\n"))
        kind = (depth, signed)
    return "\n".join(written)


def html_text(html):
    text = HtmlText(html.replace("\r\n", "\n")).text()
    return place_marks(text) if re.search("[\uf0f0-\uf0f3]", text) else text


# ------------------------------------------------------------------------------------- other texts


def unix_lines(text):
    if "\r" in text:
        text = text.replace("\r\r\n", "\n").replace("\r\n", "\n").replace("\r", "\n")
    return text if text.isascii() else INVISIBLE.sub("", text.replace("\xa0", " "))


def bare_ends(text):
    """Lines without the blanks at their ends."""
    return "\n".join([line.rstrip() for line in text.split("\n")]) if " \n" in text or "\t\n" in text else text


def unflow(text, delsp):
    """The paragraphs of format=flowed (RFC 3676), with ">" signs for its quotes."""
    lines, joining = [], None
    for line in text.split("\n"):
        content = line.lstrip(">")
        depth = len(line) - len(content)
        content = content[1:] if content[:1] == " " else content
        fixed = content == "-- " or content[-1:] != " "
        if joining == depth and content != "-- ":
            lines[-1].append(content)
        else:
            lines.append([">" * depth + " " if depth else "", content])
        joining = None if fixed else depth
        if delsp and not fixed:
            lines[-1][-1] = content[:-1]
    return "\n".join(map("".join, lines))


def enriched_text(text):
    """text/enriched and text/richtext (RFC 1896): commands go, single line ends are blanks."""
    text = re.sub(r"(?is)<param>[^<]*</param>", "", text.replace("<<", "\0"))
    text = re.sub(r"(?i)<(?:nl|paragraph|/paragraph)>", "\n\n", text)
    text = re.sub(r"</?[A-Za-z-]{1,60}>", "", text).replace("\0", "<")
    return re.sub(r"\n+", lambda match: match.group()[1:] or " ", text)


def calendar_text(text):
    """What an invitation says: title, time, place, organiser, description of each event (RFC 5545)."""
    text = re.sub(r"\n[ \t]", "", text)
    return "\n\n".join(filter(None, map(event_text, text.split("BEGIN:VEVENT")[1:100])))


def event_text(event):
    fields = {}
    for line in event.partition("END:VEVENT")[0].split("\n"):
        name, _, value = line.partition(":")
        name, _, extra = name.partition(";")
        value = re.sub(r"\\(.)", lambda match: "\n" if match.group(1) in "nN" else match.group(1), value)
        fields.setdefault(name.strip().upper(), (value.strip(), extra))

    def moment(name):
        value = fields.get(name, ("",))[0]
        stamp = re.match(r"(\d{4})(\d\d)(\d\d)(?:T(\d\d)(\d\d))?", value)
        day = "-".join(stamp.group(1, 2, 3)) if stamp else ""
        return day + " " + ":".join(stamp.group(4, 5)) + " UTC" * value.endswith("Z") if stamp and stamp.group(4) else day
    organizer = re.search(r"CN=\"?([^\";:]+)", fields.get("ORGANIZER", ("", ""))[1])
    lines = (("日程：", fields.get("SUMMARY", ("",))[0]),
             ("时间：", " – ".join(filter(None, (moment("DTSTART"), moment("DTEND"))))),
             ("地点：", fields.get("LOCATION", ("",))[0]),
             ("组织者：", organizer.group(1) if organizer else ""), ("", fields.get("DESCRIPTION", ("",))[0]))
    return "\n".join(label + value for label, value in lines if value)


def without_uu_files(data):
    """A plain body with each uuencoded file inside replaced by its name."""
    kept, at = [], 0
    for start, end, name, _ in uu_files(data):
        kept += data[at:start], b"[" + name + b"]"
        at = end
    return b"".join(kept) + data[at:]


def signed_content(data):
    """The MIME entity inside opaque S/MIME signed data (RFC 5652, BER), else b""."""
    at = data.find(b"\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07\x01\xa0")
    content, at = [], ber_body(data, at + 11)[0] if at >= 0 else len(data)
    while at + 2 <= len(data) and data[at] in (0x04, 0x24):
        body, end = ber_body(data, at)
        if data[at] == 0x04:
            content.append(data[body:end])
        at = body if data[at] == 0x24 else end
    return b"".join(content)


def ber_body(data, at):
    """(start, end) of the content of the BER element at data[at]; an open length ends with the data."""
    size = data[at + 1] if at + 1 < len(data) else 0
    start = at + 2 + (size & 0x7F if size >= 0x80 else 0)
    if size > 0x80:
        size = int.from_bytes(data[at + 2:start][:6], "big")
    return start, len(data) if size == 0x80 else start + size


# ------------------------------------------------------------------------------------ body of a mail

HTML_TYPES = ("text/html", "application/xhtml+xml", "text/xhtml")
SIGNED_TYPES = ("application/pkcs7-mime", "application/x-pkcs7-mime")
NO_BODY_TYPES = frozenset("text/rtf text/vcard text/x-vcard text/directory text/css text/javascript text/x-amp-html"
                          " text/xml text/csv text/x-moz-deleted".split())
STUB = (r"(?:not|n't) (?:support|display|render|view|read|able)[^.\n]{0,40}html|view (?:it|this|the) [^.\n]{0,40}"
        r"(?:browser|online)|html[- ]?(?:capable|enabled|compatible|e-?mail|format|message|version)"
        r"|不支持[^\n]{0,20}html|html[^\n]{0,8}(?:格式|邮件|郵件|メール)|支持\s*html")
MARKUP_IN_TEXT = r"(?i)&nbsp;|</?(?:div|span|td|font|p)\b"


class Body:
    """Puts together the text of a message's parts; html tells whether any of it came from HTML."""

    def __init__(self):
        self.html = False

    def text(self, part):
        if part.parts is None:
            return "" if part.is_attachment else self._leaf(part)
        if part.is_message:
            return self._message(part.parts[0])
        if part.kind == "multipart/alternative":
            return self._alternative(part.parts)
        return self._joined(shown_parts(part) if part.kind == "multipart/related" else part.parts)

    def _joined(self, parts):
        texts = []
        for part in parts:
            CLOCK.check()
            text = self.text(part)
            if text.strip() and not (texts and repeats(text, texts[-1])):
                texts.append(text)
        return "\n\n".join(texts)

    def _message(self, inner):
        """A forwarded message: who wrote what to whom and when, then its body."""
        labels = ((b"from", "发件人："), (b"subject", "主题："), (b"date", "日期："), (b"to", "收件人："))
        head = "\n".join(label + " ".join(decode_words(inner.fields[name]).split())
                         for name, label in labels if inner.fields.get(name))
        return "\n\n".join(filter(None, (head, self.text(inner))))

    def _alternative(self, parts):
        """The reading a person would choose: plain text, unless it is a stub or poorer than the rich one."""
        plain = [part for part in parts if part.kind == "text/plain"]
        rich = [part for part in parts if part.kind not in ("text/plain", "text/calendar")]
        text = self._joined(plain)
        if rich and may_be_poorer(text, html_source(rich[-1])):
            text = self._richer(text, rich)
        calendars = self._joined(part for part in parts if part.kind == "text/calendar")
        return "\n\n".join(filter(None, (text, calendars)))

    def _richer(self, plain, rich):
        was_html = self.html
        for part in reversed(rich):
            text = self.text(part)
            if text.strip() and is_better(text, plain):
                return text
            self.html = was_html
        return plain

    def _leaf(self, part):
        kind = part.kind
        if kind in HTML_TYPES:
            return self._html(part.payload(text=True), part.charset)
        if kind in SIGNED_TYPES:
            content = signed_content(part.payload())
            return self.text(Scanner(b"\n" + content, MAX_DEPTH // 2).run()) if content else ""
        if not kind.startswith(("text/", "message/")) or kind in NO_BODY_TYPES:
            return ""
        data = part.payload(text=True)
        if kind == "text/plain" and b"begin " in data:
            data = without_uu_files(data)
        text = unix_lines(decode_text(data, part.charset))
        if kind == "text/plain" and "<" in text[:200] and re.match(r"(?i)\s*<(?:!doctype\s+html|html[\s>]|body[\s>])", text):
            return self._html(data, part.charset)
        if kind == "text/calendar":
            return calendar_text(text)
        if kind in ("text/enriched", "text/richtext"):
            text = enriched_text(text)
        elif parameter(part.parameters, b"format").lower() == b"flowed":
            text = unflow(text, parameter(part.parameters, b"delsp").lower() == b"yes")
        return bare_ends(text).strip("\n")

    def _html(self, data, label):
        if codec_for(label) in ("", "cp1252"):
            meta = re.search(rb"(?i)<meta[^>]{0,300}charset\s*=\s*[\"']?\s*([\w.:-]{1,40})", data[:8192])
            label = meta.group(1) if meta and codec_for(meta.group(1)) else label
        self.html = True
        html = decode_text(data, label)
        return html_text(html) if "<" in html else bare_ends(unescaped(unix_lines(html))).strip("\n")


def shown_parts(related):
    """Of a related group its root, and what isn't shown inside it by an identifier."""
    start = parameter(related.parameters, b"start").strip(b"<> ")
    for part in related.parts:
        if start and part.fields.get(b"content-id", b"").strip(b"<> ") == start:
            return [part]
    return [part for i, part in enumerate(related.parts) if not i or b"content-id" not in part.fields]


def repeats(text, earlier):
    return len(text) > 20 and abs(len(text) - len(earlier)) < 200 and text.split() == earlier.split()


def html_source(part):
    while part.parts:
        part = part.parts[0]
    return part.payload(text=True) if part.kind in HTML_TYPES else b""


def may_be_poorer(plain, source):
    """Whether the rich alternative must be looked at: a cheap test that most mail passes."""
    own = without_links(plain)
    if len(own) * 8 < len(source) or not own.strip() or is_damaged(plain) or "\ufffd" in plain or is_stub(plain):
        return True
    low = source.lower()
    return any(map(low.__contains__, KNOWN_MARKUP))


def is_damaged(plain):
    return plain.count("?") * 5 > len(plain) or ("<" in plain or "&" in plain) and bool(re.search(MARKUP_IN_TEXT, plain))


def is_stub(plain):
    low = plain.lower() if len(plain) < 600 else ""
    return ("html" in low or "view" in low) and bool(re.search(STUB, low))


def is_better(rich, plain):
    rich_size = len("".join(rich.split()))
    if is_stub(plain) or rich.count("\ufffd") < plain.count("\ufffd"):
        return rich_size >= 10
    if is_damaged(plain) or QUOTE_MARK in rich or SIGNATURE_MARK in rich:
        return True
    return len("".join(without_links(plain).split())) < rich_size * 0.6


def without_links(plain):
    return re.sub(r"https?://\S+", "", plain) if "://" in plain else plain


def body_text(data):
    """(text, whether from HTML) of a message; data begins with a line feed."""
    scanner, body = Scanner(data), Body()
    text = body.text(scanner.run())
    if scanner.odd and not text.strip():
        body = Body()
        text = body.text(full_parse(data))
    text = nfc(text).strip("\n")
    if scanner.capped:
        text = text.strip() + "\n\n" + CAP_NOTICE
    return text if text.strip() else "", body.html


# ------------------------------------------------------------------------------------- attachments

EXTENSIONS = {"application/pdf": ".pdf", "application/zip": ".zip", "application/msword": ".doc", "image/jpeg": ".jpg",
              "image/png": ".png", "image/gif": ".gif", "image/tiff": ".tif", "text/plain": ".txt", "text/html": ".html",
              "text/calendar": ".ics", "text/csv": ".csv", "text/rtf": ".rtf", "application/rtf": ".rtf",
              "application/vnd.ms-excel": ".xls", "application/vnd.ms-powerpoint": ".ppt", "audio/mpeg": ".mp3",
              "text/vcard": ".vcf", "text/x-vcard": ".vcf", "video/mp4": ".mp4"}
FIXED_NAMES = {"application/pkcs7-mime": "smime.p7m", "application/x-pkcs7-mime": "smime.p7m",
               "application/ms-tnef": "winmail.dat", "application/vnd.ms-tnef": "winmail.dat"}
SILENT_TYPES = ("application/pgp-signature", "application/pgp-encrypted", "application/pkcs7-signature",
                "application/x-pkcs7-signature", "application/applefile")


class Attachment:
    """A named file inside a message, and how to get its bytes."""

    __slots__ = ("name", "kind", "part", "lines")

    def __init__(self, name, kind, part, lines=None):
        self.name, self.kind, self.part, self.lines = name, kind, part, lines

    def data(self):
        return self.part.payload() if self.lines is None else decode_uu(self.lines)

    def is_cut(self, cut):
        return cut and self.lines is None and self.part.end == len(self.part.data)

    def size(self, cut, file_size):
        """Decoded bytes; an estimate where the file was read in part or Mail keeps the bytes elsewhere."""
        part = self.part
        elsewhere = part.fields.get(b"x-apple-content-length", b"")
        if elsewhere.isdigit() and part.end - part.start < 16:
            return int(elsewhere[:15])
        if self.is_cut(cut):
            rest = max(file_size - part.start, 0)
            return rest * 57 // 77 if part.encoding == b"base64" else rest
        return len(self.data())


def attachments_of(root):
    """All attachments in document order, those of forwarded messages included."""
    found, body_seen, stack = [], False, [(root, "")]
    hint = codec_for(first_charset(root))
    while stack:
        part, group = stack.pop()
        CLOCK.check()
        stack.extend((child, part.kind) for child in reversed(part.parts or ()))
        is_text = part.kind in ("text/plain", "text/html") and not part.is_attachment
        if is_text and part.kind == "text/plain":
            found.extend(uu_attachments(part, hint))
        is_body, body_seen = is_text and not body_seen and b"filename" not in part.named, body_seen or is_text
        if is_body or part.kind.startswith("multipart/"):
            continue
        name = part_name(part, hint)
        if name or is_nameless_attachment(part, group):
            found.append(Attachment(name or name_for(part, len(found) + 1), part.kind, part))
    return found


def first_charset(root):
    stack = [root]
    while stack:
        part = stack.pop()
        if part.kind.startswith("text/") and part.charset:
            return part.charset
        stack.extend(reversed(part.parts or ()))
    return b""


def part_name(part, hint):
    written = [(group[key], hint) for group, key in ((part.named, b"filename"), (part.parameters, b"name"),
                                                      (part.named, b"name"), (part.parameters, b"filename")) if key in group]
    names = [name for name in (decode_name(*value, hint) for value, hint in written) if name]
    return next((name for name in names if "\ufffd" not in name), names[0] if names else "")


def is_nameless_attachment(part, group):
    if part.is_attachment:
        return True
    if part.kind.startswith(("text/", "message/")) or part.kind in SILENT_TYPES or part.end <= part.start:
        return False
    return not (part.kind.startswith("image/") and (group == "multipart/related" or b"content-id" in part.fields))


def name_for(part, number):
    if part.is_message:
        subject = decode_words(part.parts[0].fields.get(b"subject", b"")) if part.parts else ""
        return (re.sub(r"[\\/:\x00-\x1f]+", "-", nfc(subject)).strip()[:80] or "邮件") + ".eml"
    return FIXED_NAMES.get(part.kind) or "附件" + str(number) + EXTENSIONS.get(part.kind, "")


def uu_attachments(part, hint):
    data = part.payload(text=True)
    for _, _, name, lines in uu_files(data) if b"begin " in data else ():
        yield Attachment(decode_name(name, None, hint) or "附件", "application/octet-stream", part, lines)


def cleaned(name):
    """A name as the program's own cleaning of attachment names leaves it, near enough to compare."""
    name = name.strip("\"' \t\r\n")
    head, quotes, rest = name.partition("''")
    if quotes:
        known = re.fullmatch(r"(?i)utf-?8|us-ascii|gbk|gb2312|big5|iso-.*|windows-.*", head)
        name = unpercent((rest if known else name).encode("utf-8", "replace")).decode("utf-8", "replace")
    if "=?" in name:
        name = decode_words(name.encode("utf-8", "replace")).replace("_", " ")
    bracket = re.match(r"<[^>]*@[^>]*>(.*)", name, re.S)
    name = (bracket.group(1) if bracket else name).replace("\\", "").strip()
    return ".".join(filter(None, (piece.strip() for piece in name.split(".")))) or name


def squeezed(name):
    return "".join(c for c in nfc(cleaned(name)).casefold() if c.isalnum())


def find_attachment(attachments, wanted):
    """The attachment of that name; the likeness asked for goes from the very name down to letters and digits."""
    for form in (str, nfc, lambda name: nfc(cleaned(name)), squeezed):
        key = form(wanted)
        for attachment in attachments:
            if key and form(attachment.name) == key:
                return attachment
    return None


# ------------------------------------------------------------------------------------------- files

OPEN_FLAGS = os.O_RDONLY | sum(getattr(os, flag, 0) for flag in ("O_NONBLOCK", "O_NOCTTY", "O_CLOEXEC", "O_BINARY"))


def read_file(path, limit):
    """(bytes, size of the file): at most limit bytes of a regular file, with a line feed in front."""
    try:
        descriptor = os.open(path, OPEN_FLAGS)
    except FileNotFoundError:
        raise Failure("找不到邮件文件：" + path) from None
    except PermissionError:
        raise Failure("没有权限读取邮件文件：" + path) from None
    except (OSError, ValueError):
        raise Failure("无法打开邮件文件：" + path) from None
    try:
        status = os.fstat(descriptor)
        if not stat.S_ISREG(status.st_mode):
            raise Failure("不是普通文件：" + path)
        chunks, left = [b"\n"], limit
        while left > 0:
            chunk = os.read(descriptor, min(left, max(status.st_size, 65536), 16 << 20))
            if not chunk:
                break
            chunks.append(chunk)
            left -= len(chunk)
        return b"".join(chunks), status.st_size
    except OSError:
        raise Failure("读取邮件文件失败：" + path) from None
    finally:
        os.close(descriptor)


class Mail:
    """The message of one file: its bytes behind one line feed, without what an .emlx holds around it."""

    def __init__(self, request, limit):
        text = request.get("message_text")
        if isinstance(text, str) and "file_path" not in request:
            data, path = b"\n" + text.encode("utf-8", "replace")[:limit], ""
            self.size = len(data) - 1
        else:
            path = required(request, "file_path", str)
            data, self.size = read_file(path, limit)
        self.cut = self.size > len(data) - 1
        self.data = message_bytes(data, path.lower().endswith(".emlx"), self.cut)


def message_bytes(data, is_emlx, cut):
    """The message itself, whatever stands before or behind it in its file."""
    first_field = re.compile(FIRST_FIELD)
    if not is_emlx and data[1:2].isalpha() and not data.startswith(b"\nFrom ") and b"\n" in data[1:8192]:
        return data
    count = re.match(rb"\n[ \t]*([+-]?\d{1,18})[ \t]*\r?\n", data)
    if count and (is_emlx or first_field.match(data, count.end())):
        data = cut_emlx(data, count.end(), int(count.group(1)), cut)
    elif is_emlx:
        data = cut_emlx(data, 1 if first_field.match(data, 1) else data.find(b"\n", 1) + 1, -1, cut)
    if data[1:3] in (b"\xff\xfe", b"\xfe\xff"):
        data = b"\n" + data[1:].decode("utf-16", "replace").encode("utf-8", "replace")
    if b"\n" not in data[1:8192] and b"\r" in data[1:8192]:
        data = data.replace(b"\r\n", b"\n").replace(b"\r", b"\n")
    lead = re.match(rb"\n(?:\xef\xbb\xbf)?(?:\r?\n){0,100}(?:>?From [^\n]*\n)?", data).end()
    return b"\n" + data[lead:] if lead > 1 and first_field.match(data, lead) else data


def cut_emlx(data, start, count, cut):
    """The counted bytes; where the count can't be right, all up to Mail's own property list at the end."""
    end = start + count
    tail = data[end:end + 64].lstrip() if count >= 0 else b"?"
    if count < 0 or not cut and (end > len(data) or tail and not tail.startswith((b"<?xml", b"<!DOCTYPE", b"<plist"))):
        plist = data.rfind(b"<?xml version", max(start, len(data) - 65536))
        end = plist if plist >= 0 and data.find(b"<plist", plist) >= 0 else len(data)
    return b"\n" + data[start:end]


# ---------------------------------------------------------------------------------------- commands


def required(request, key, kind):
    value = request.get(key)
    if not isinstance(value, kind):
        raise Failure("请求缺少字段：" + key)
    return value


def byte_limit(request, default):
    value = request.get("max_bytes", default)
    if isinstance(value, bool) or not isinstance(value, int) or value < 0:
        raise Failure("请求的 max_bytes 无效")
    return min(value, 1 << 31)


def preview(request):
    text, html = body_text(Mail(request, byte_limit(request, DEFAULT_TEXT_BYTES)).data)
    text = re.sub("\n*(?:" + SIGNATURE_MARK + "|" + QUOTE_MARK + ")\n*", "\n\n", text).strip("\n")
    return {"ok": True, "preview": text or EMPTY_PREVIEW, "is_html": html}


def bodytext_batch(request):
    paths, limit = required(request, "file_paths", list), byte_limit(request, DEFAULT_TEXT_BYTES)
    if not all(isinstance(path, str) for path in paths):
        raise Failure("请求的 file_paths 无效")
    return batch_pieces(paths, limit)


def batch_pieces(paths, limit):
    """The answer, one item a path, in order; what fails or comes too late has an empty text."""
    finish = time.monotonic() + BATCH_SECONDS
    yield b'{"ok": true, "items": ['
    for i, path in enumerate(paths):
        seconds = min(SECONDS["bodytext_batch"], finish - time.monotonic())
        text = ""
        try:
            text = CLOCK.run(seconds, file_text, path, limit) if seconds > 0 else ""
        except Exception as error:
            log(path, error)
        yield (b", " if i else b"") + to_json({"path": path, "text": text})
    yield b"]}"


def file_text(path, limit):
    return body_text(Mail({"file_path": path}, limit).data)[0]


def attachments(request):
    mail = Mail(request, byte_limit(request, DEFAULT_LIST_BYTES))
    found = attachments_of(Scanner(mail.data).run())
    return {"ok": True, "attachments": [{"file_name": each.name, "content_type": each.kind,
                                         "estimated_size": each.size(mail.cut, mail.size)} for each in found]}


def attachment_data(request):
    name, limit = required(request, "file_name", str), byte_limit(request, DEFAULT_DATA_BYTES)
    mail = Mail(request, 2 * limit + DEFAULT_LIST_BYTES)
    found = find_attachment(attachments_of(Scanner(mail.data).run()), name)
    if not found:
        raise Failure("没有在邮件中找到附件：" + name)
    data = b"" if found.is_cut(mail.cut) else found.data()
    if found.is_cut(mail.cut) or len(data) > limit:
        raise Failure("附件超过大小上限：" + name)
    if not data and b"x-apple-content-length" in found.part.fields:
        raise Failure("附件内容不在邮件文件内：" + name)
    return base64_pieces(data)


def base64_pieces(data):
    yield b'{"ok": true, "attachment_data_base64": "'
    for start in range(0, len(data), 3 << 20):
        yield binascii.b2a_base64(data[start:start + (3 << 20)], newline=False)
    yield b'"}'


COMMANDS = {"preview": preview, "bodytext_batch": bodytext_batch, "attachments": attachments,
            "attachment_data": attachment_data}


# ---------------------------------------------------------------------------------------- protocol


def to_json(answer):
    """One line of JSON; a half of a surrogate pair, which a path may hold, stays an escape."""
    return json.dumps(answer, ensure_ascii=False).encode("utf-8", "backslashreplace")


def refusal(text):
    return [to_json({"ok": False, "error": text})]


def log(what, error):
    sys.stderr.write("mail_worker: %s: %s: %s\n" % (ascii(what), type(error).__name__, ascii(str(error))))


def parse_request(line):
    def number(digits):
        return int(digits) if len(digits) < 20 else None
    try:
        request = json.loads(line.decode("utf-8"), parse_int=number)
    except (ValueError, RecursionError):
        raise Failure("请求不是有效的 JSON") from None
    if not isinstance(request, dict):
        raise Failure("请求不是有效的 JSON 对象")
    return request


def answer(line):
    """(pieces of the answer to one request, whether it was the last)."""
    try:
        if len(line) > MAX_REQUEST:
            raise Failure("请求过长")
        request = parse_request(line)
        command = request.get("command")
        if command == "shutdown":
            return [to_json({"ok": True})], True
        if not isinstance(command, str) or command not in COMMANDS:
            raise Failure("未知命令：" + str(command)[:100])
        # A batch sets the time for each message by itself.
        seconds = BATCH_SECONDS if command == "bodytext_batch" else SECONDS[command]
        result = CLOCK.run(seconds, COMMANDS[command], request)
        return [to_json(result)] if isinstance(result, dict) else result, False
    except Failure as failure:
        return refusal(str(failure)), False
    except MemoryError:
        return refusal("处理邮件时内存不足"), False
    except Exception as error:
        log("request", error)
        return refusal("处理邮件时出错：" + type(error).__name__), False


def write(output, pieces):
    for piece in pieces:
        output.write(piece)
    output.write(b"\n")
    output.flush()


def serve(source, output):
    done = False
    while not done:
        line = source.readline(MAX_REQUEST + 1)
        if not line:
            return
        rest = line
        while len(rest) > MAX_REQUEST and not rest.endswith(b"\n"):
            rest = source.readline(MAX_REQUEST + 1)
        if line.strip():
            pieces, done = answer(line)
            write(output, pieces)


def main(arguments):
    CLOCK.use_signals()
    source, output = sys.stdin.buffer, sys.stdout.buffer
    try:
        if "--serve" in arguments:
            serve(source, output)
        else:
            # One run is too short for cycles to gather.
            gc.disable()
            write(output, answer(source.read(MAX_REQUEST + 1))[0])
            sys.stderr.flush()
            os._exit(0)
    except BrokenPipeError:
        os._exit(1)


if __name__ == "__main__":
    main(sys.argv[1:])
