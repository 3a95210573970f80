"""One entity of a message and its header fields."""

import re
from functools import lru_cache

from ..limits import MAX_FIELD, MAX_HEADER
from .header_values import parameter, parse_field
from .transfer import decode_base64, decode_base64_text, decode_quoted_printable, hidden_base64, is_quoted_printable

FIELDS = re.compile(rb"\n(?=[cdfstx])(content-(?:type|transfer-encoding|disposition|id|description)"
                    rb"|x-apple-content-length|from|to|subject|date)[ \t]*:[ \t]*([^\n]*(?:\n[ \t][^\n]*)*)", re.I)


BARE_TYPES = {b"text": "text/plain", b"plain": "text/plain", b"html": "text/html", b"text/": "text/plain"}
HTML_TYPES = ("text/html", "application/xhtml+xml", "text/xhtml", "text/watch-html")
MESSAGE_TYPES = ("message/rfc822", "message/global", "message/news")
SEALED_TYPES = ("application/pkcs7-mime", "application/x-pkcs7-mime")
WINMAIL_TYPES = ("application/ms-tnef", "application/vnd.ms-tnef")
ENCODED = (b"base64", b"quotedprintable")
DECODED = b"decoded"
FILES_INSIDE = (b"xuuencode", b"uuencode", b"xuue", b"uue", b"xyencode", b"yenc", b"xyenc")
# How files begin that are sent as text by mistake.
FILE_STARTS = (b"GIF8", b"\x89PNG", b"\xff\xd8\xff", b"%PDF-", b"PK\x03\x04", b"\xd0\xcf\x11\xe0", b"Rar!", b"\x1f\x8b\x08",
               b"7z\xbc\xaf", b"MZ\x90\0", b"BZh9", b"\0\0\0\x18ftyp", b"\0\0\0\x20ftyp", b"ID3\x03", b"RIFF")


@lru_cache(maxsize=512)
def media_type(main):
    kind = re.match(rb"\s*\"?([\w.+*-]+/[\w.+*-]+)", main)
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

    def set_fields(self, fields):
        self.fields = fields
        if b"content-type" in fields:
            main, self.parameters = parse_field(fields[b"content-type"])
            unknown = "application/octet-stream" if main and b"name" in self.parameters else self.kind
            self.kind = media_type(main) or unknown
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
        return self.kind in MESSAGE_TYPES or self.kind == "message/partial" and parameter(self.parameters, b"number") == b"1"

    @property
    def is_sealed(self):
        return self.kind in SEALED_TYPES or self.kind == "application/octet-stream" and self.name_ends(b".p7m")

    @property
    def is_winmail(self):
        return self.kind in WINMAIL_TYPES or self.name_ends(b"winmail.dat")

    @property
    def is_named(self):
        return b"filename" in self.named or b"name" in self.parameters

    def name_ends(self, end):
        return any(parameter(*place).strip().lower().endswith(end)
                   for place in ((self.named, b"filename"), (self.parameters, b"name")))

    @staticmethod
    def is_binary(data):
        """Whether the payload of a text is a file of some other kind."""
        return data.startswith(FILE_STARTS)

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
            return text and hidden_base64(raw) or decode_quoted_printable(raw)
        if self.encoding in FILES_INSIDE:
            from ..packed.inline_files import inline_files
            return next((file.data() for file in inline_files(raw)), raw)
        if not text or self.encoding == DECODED:
            return raw
        return hidden_base64(raw) or (decode_quoted_printable(raw) if is_quoted_printable(raw) else raw)


def read_fields(data, start, end):
    """The fields that matter of a header block, the first of each name, unfolded; data[start] is a line feed."""
    fields = {}
    for match in FIELDS.finditer(data, start, min(end, start + MAX_HEADER)):
        name = match.group(1).lower()
        if not fields.get(name):
            value = match.group(2)[:MAX_FIELD]
            fields[name] = (re.sub(rb"\r*\n[ \t]+", b" ", value) if b"\n" in value else value).strip()
    return fields
