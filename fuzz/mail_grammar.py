"""Odd mail, changed by the grammar of mail. message(seed, number) is always the same."""

import base64
import pathlib
import quopri
import random
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "worker"))
sys.dont_write_bytecode = True

import make_seeds  # noqa: E402
import odd_mail  # noqa: E402
import test_hostile  # noqa: E402

LONGEST = 1 << 16
HEAD_OF_HOSTILE = 3000

CHARSETS = ("utf-8 us-ascii gb2312 gbk gb18030 big5 hz-gb-2312 iso-2022-jp iso-2022-kr euc-kr ks_c_5601-1987 shift_jis euc-jp koi8-r windows-1252"
            " utf-7 utf-16 utf-16le utf-32 unicode x-user-defined unknown-8bit base64 idna punycode unicode_escape rot13 zip hex cp65001 mbcs x-mac-roman"
            " iso-8859-8-i iso-2022-cn-ext latin1 \xe9").split() + ["", " ", "\"", "utf-8 (c)", "x" * 70]
ENCODINGS = "7bit 8bit binary base64 quoted-printable x-uuencode uue yenc x-gzip64 BASE64; \"base64\" quoted_printable".split()
TYPES = ("text/plain text/html text/enriched text/rtf application/rtf text/calendar application/ics text/vcard text/csv text/ text plain html"
         " multipart/mixed multipart/alternative multipart/related multipart/digest multipart/encrypted multipart/signed multipart/report multipart/appledouble"
         " message/rfc822 message/global message/partial message/external-body message/delivery-status application/octet-stream application/pkcs7-mime"
         " application/x-pkcs7-mime application/pkcs7-signature application/ms-tnef application/vnd.ms-tnef application/pgp-encrypted application/applefile"
         " image/png application/pdf application/xhtml+xml text/x-watch-html */* / multipart/ message/").split()
PARAMETERS = ("boundary", "charset", "name", "filename", "filename*", "filename*0", "filename*0*", "filename*1", "filename*1*", "filename*99999999999999999999",
              "name*", "name*0*", "start", "type", "number", "total", "id", "format", "delsp", "protocol", "smime-type", "x-apple-part-url")
FIELDS = ("Content-Type", "Content-Transfer-Encoding", "Content-Disposition", "Content-ID", "Content-Description", "X-Apple-Content-Length", "From", "Subject",
          "Date", "To", "MIME-Version", "Received", "content-type ", "CONTENT-TYPE", "X-", "Content-Type\t")
VALUES = ("", " ", "\"", "\"\"", "\\", "a\"b", "(comment", "=?utf-8?B?5L2g5aW9?=", "=?gb2312?Q?=c4=e3?=", "=?utf-8?q?", "=?a*en?b?!?=", "%E4%BD%A0", "gb2312''%C4%E3",
          "utf-8'zh'%e4%bd", "''", "'''", "0", "-1", "4294967296", "9" * 30, "../../x", "C:\\x", "\x00", "\r", "\n ", "\t", "你好", "\ud800", "\u202e", "a" * 300)
HTML = ("<p>", "</p>", "<br>", "<div style=\"display:none\">", "<div style='font-size:0'>", "<span style=\"white-space:pre\">", "</div>", "<table>", "<tr>", "<td>", "</table>",
        "<ul>", "<li>", "<blockquote type=cite>", "</blockquote>", "<pre>", "</pre>", "<a href=\"http://x/\">", "</a>", "<img alt='图' src=cid:x>", "<style>.a{display:none}</style>",
        "<style>", "<script>", "</script>", "<!--", "-->", "<![CDATA[", "]]>", "<!DOCTYPE", "<?xml", "<title>", "<meta charset=gb2312>", "<meta http-equiv=content-type content='text/html; charset=unicode'>",
        "<textarea>", "<select><option>", "<hr>", "<", ">", "&", "&amp;", "&#0;", "&#xD800;", "&#x110000;", "&#99999999999;", "&nbsp", "&notit;", "&lt", "<p class=a>", "<x:y/>", "<svg><text>",
        "<font size=0 color=#fff>", "<o:p>", "<v:shape>", "<template>", "<noscript>", "<math>", "<b></i>", "<div hidden>", "<p align=", "<body", "<html", "<base href=")
OTHER = ("\\par", "\\'d6", "{\\*\\x", "\\u20013 ?", "\\bin99999 ", "\\fonttbl", "}", "{", "\\ansicpg936", "begin 644 a.txt\n", "#0V%T\n", "`\nend\n", "=ybegin line=128 size=3 name=x\n", "=yend size=3\n",
         "=ypart begin=1 end=3\n", "BEGIN:VCALENDAR\nBEGIN:VEVENT\n", "SUMMARY;LANGUAGE=zh:会议\n", "DTSTART;TZID=\"x\":20240101T000000\n", "DESCRIPTION:a\\nb\n", "END:VEVENT\n", "~{", "~}", "\x1b$B", "\x1b(B", "\x1b$)C", "\x0e", "+AGE-", "+", "-",
         "-----BEGIN PGP SIGNED MESSAGE-----\nHash: SHA1\n\n", "-----BEGIN PGP SIGNATURE-----\n", "-----END PGP SIGNATURE-----\n", "-----BEGIN PGP MESSAGE-----\n", "From ", ">From ", "--", "----", "\n--", "--\n", "=\n", "=E4=BD", "=3D", "==", "\ufeff",
         "<?xml version=\"1.0\"?><plist>", "\r", "\r\n", "\n\n", "\x00", "\x0b", "\x85", "\u2028", "\u0301" * 40, "\u1100\u1161\u11a8")
BINARY = (b"\x78\x9f\x3e\x22", b"\x01\x03\x90\x06\x00", b"\x02\x02\x90\x06\x00", b"\x02\x0f\x80\x06\x00", b"\x02\x05\x90\x06\x00", b"LZFu", b"\xff\xff\xff\xff", b"\x00\x00\x00\x00", b"\x1e\x10\x00\x10", b"\x02\x01\x09\x10", b"\x0d\x00\x01\x37",
          b"\x30\x80", b"\x24\x80\x04\x84", b"\x04\x82\xff\xff", b"\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07\x01\xa0\x80", b"\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07\x02", b"\xa0\x84\x7f\xff\xff\xff", b"\xff\xfe", b"\xfe\xff", b"\xef\xbb\xbf", b"\x89PNG", b"%PDF-")


def coded(text):
    return text.encode("utf-8", "surrogatepass")


def bases():
    """Odd mail, the heads of the hostile shapes, and messages of the sample store."""
    import tempfile
    odd = [data for _, data, _, _ in odd_mail.all_cases() if len(data) <= LONGEST]
    with tempfile.TemporaryDirectory() as home:
        files = make_seeds.sample_store(home)[0]
    return odd + [data[:HEAD_OF_HOSTILE] for data in test_hostile.HOSTILE.values()] + files


class Mutator:
    """Changes one message; each change is a method that gives the changed one."""

    def __init__(self, rng, mails):
        self.rng, self.mails = rng, mails

    def message(self):
        rng = self.rng
        data = rng.choice(self.mails)
        for _ in range(1 + min(int(rng.expovariate(0.4)), 12)):
            data = rng.choice(CHANGES)(self, data)[:LONGEST]
        return data

    def place(self, data):
        return self.rng.randrange(len(data) + 1)

    def range(self, data):
        start = self.place(data)
        return start, min(len(data), start + int(self.rng.expovariate(1 / 40)) + 1)

    def word(self):
        rng = self.rng
        group = rng.choice((CHARSETS, ENCODINGS, TYPES, VALUES, HTML, OTHER, BINARY))
        word = rng.choice(group)
        return word if isinstance(word, bytes) else coded(word)

    def insert_word(self, data):
        at = self.place(data)
        return data[:at] + self.word() + data[at:]

    def insert_words(self, data):
        """A run of words of one kind."""
        group = self.rng.choice((HTML, OTHER, BINARY, VALUES))
        words = b"".join(each if isinstance(each, bytes) else coded(each) for each in self.rng.choices(group, k=self.rng.randrange(2, 20)))
        at = self.place(data)
        return data[:at] + words + data[at:]

    def repeat(self, data):
        """A piece of it, or a word, many times: what shows work that isn't linear."""
        start, end = self.range(data)
        piece = data[start:end] if self.rng.random() < 0.5 else self.word()
        count = int(min(2 ** self.rng.uniform(1, 13), LONGEST / max(len(piece), 1)))
        return data[:start] + piece * count + data[end:]

    def delete(self, data):
        start, end = self.range(data)
        return data[:start] + data[end:]

    def scribble(self, data):
        changed = bytearray(data or b"x")
        for _ in range(self.rng.randrange(1, 6)):
            changed[self.rng.randrange(len(changed))] = self.rng.choice((0, 10, 13, 32, 34, 45, 58, 59, 61, 92, 255, self.rng.randrange(256)))
        return bytes(changed)

    def number(self, data):
        """Another number in the place of one."""
        found = list(re.finditer(rb"\d+", data[:8192]))
        if not found:
            return data
        match = self.rng.choice(found)
        value = self.rng.choice((b"0", b"-1", b"1", b"255", b"65536", b"4294967295", b"9" * 25, b"", b"1e9"))
        return data[:match.start()] + value + data[match.end():]

    def lines(self, data):
        """Lines swapped, doubled or dropped."""
        lines = data.split(b"\n")
        a, b = self.rng.randrange(len(lines)), self.rng.randrange(len(lines))
        kind = self.rng.randrange(3)
        if kind == 0:
            lines[a], lines[b] = lines[b], lines[a]
        elif kind == 1:
            lines.insert(a, lines[b])
        else:
            del lines[min(a, b):max(a, b)]
        return b"\n".join(lines)

    def field(self, data):
        """A field more, in front or at any line."""
        value = self.rng.choice((TYPES, ENCODINGS, VALUES, ("attachment", "inline", "attachment; filename")))
        text = "%s: %s" % (self.rng.choice(FIELDS), self.rng.choice(value))
        for _ in range(self.rng.randrange(4)):
            text += self.parameter()
        at = 0 if self.rng.random() < 0.5 else data.find(b"\n", self.place(data)) + 1
        return data[:at] + coded(text) + b"\n" + data[at:]

    def parameter(self):
        rng = self.rng
        value = rng.choice(rng.choice((CHARSETS, VALUES, TYPES, ("b0undary", "o", "b1=_x", "1", "flowed", "yes"))))
        return "%s%s=%s" % (rng.choice(("; ", ";", ";\n ", " ;\t")), rng.choice(PARAMETERS), rng.choice(("%s", "\"%s\"", "\"%s", "'%s'")) % value)

    def of_parameter(self, data):
        """Another value for a parameter that is there."""
        found = list(re.finditer(rb"(?:charset|boundary|name\*?\d?\*?)=\"?[^\";\n]*\"?", data[:8192]))
        if not found:
            return data
        match = self.rng.choice(found)
        return data[:match.start()] + coded(self.parameter().lstrip("; \t\n")) + data[match.end():]

    def other_type(self, data):
        found = list(re.finditer(rb"(?i)content-type:[ \t]*([^;\n]*)", data[:16384]))
        if not found:
            return data
        match = self.rng.choice(found)
        return data[:match.start(1)] + coded(self.rng.choice(TYPES)) + data[match.end(1):]

    def other_encoding(self, data):
        found = list(re.finditer(rb"(?i)content-transfer-encoding:[ \t]*([^\n]*)", data[:16384]))
        if not found:
            return data
        match = self.rng.choice(found)
        return data[:match.start(1)] + coded(self.rng.choice(ENCODINGS)) + data[match.end(1):]

    def splice(self, data):
        other = self.rng.choice(self.mails)
        return data[:self.place(data)] + other[self.place(other):]

    def nest(self, data):
        """As a part, or the message inside one, one or many times."""
        for _ in range(self.rng.choice((1, 1, 1, 2, 5, 30))):
            data = self.wrapped(data)[:LONGEST]
        return data

    def wrapped(self, data):
        rng = self.rng
        encoding = rng.choice(("8bit", "base64", "quoted-printable"))
        if rng.random() < 0.4:
            body = base64.encodebytes(data) if encoding == "base64" else quopri.encodestring(data) if encoding[0] == "q" else data
            return b"Content-Type: %s\nContent-Transfer-Encoding: %s\n\n" % (coded(rng.choice(TYPES)), encoding.encode()) + body
        boundary = rng.choice(("o", "b0undary", "b%d" % rng.randrange(9), "--", " ", "x" * 80)).encode()
        parts = [data] + [rng.choice(self.mails)[:800] for _ in range(rng.randrange(3))]
        rng.shuffle(parts)
        lines = b"".join(b"--" + boundary + b"\n" + part + b"\n" for part in parts)
        return b"Content-Type: multipart/%s; boundary=\"%s\"\n\n" % (rng.choice((b"mixed", b"alternative", b"related", b"digest", b"signed", b"appledouble")), boundary) + lines + (
            b"--" + boundary + b"--\n" if rng.random() < 0.7 else b"")

    def line_ends(self, data):
        return data.replace(b"\n", self.rng.choice((b"\r\n", b"\r", b"\r\r\n", b"\n\n", b"\n ")))

    def emlx(self, data):
        count = self.rng.choice((len(data), len(data), len(data) - 5, len(data) * 2, 0, -1, 10 ** 20))
        return b"%d%s\n" % (count, self.rng.choice((b"", b"   ", b"\r"))) + data + b"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist></plist>\n"

    def recoded(self, data):
        """In another charset or another width of characters."""
        return data.decode("utf-8", "replace").encode(self.rng.choice(("utf-16", "utf-16-be", "gb18030", "utf-7", "cp1252", "iso2022_jp", "big5")), "replace")

    def cut(self, data):
        return data[:self.place(data)]


CHANGES = [Mutator.insert_word, Mutator.insert_words, Mutator.repeat, Mutator.delete, Mutator.scribble, Mutator.number, Mutator.lines, Mutator.field,
           Mutator.of_parameter, Mutator.other_type, Mutator.other_encoding, Mutator.splice, Mutator.nest, Mutator.line_ends, Mutator.emlx, Mutator.recoded,
           Mutator.cut, Mutator.insert_words, Mutator.insert_word, Mutator.other_type, Mutator.field]
MAILS = []


def message(seed, number):
    if not MAILS:
        MAILS.extend(bases())
    return Mutator(random.Random(seed << 40 | number), MAILS).message()
