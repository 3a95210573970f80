"""One entity of a message and its header fields."""

import re
from functools import lru_cache

from .header_values import parameter, parse_field
from .limits import MAX_FIELD, MAX_HEADER
from .transfer import decode_base64, decode_base64_text, decode_quoted_printable

FIELDS = re.compile(rb"\n(?=[cdfstx])(content-(?:type|transfer-encoding|disposition|id)|x-apple-content-length|from|to"
                    rb"|subject|date)[ \t]*:[ \t]*([^\n]*(?:\n[ \t][^\n]*)*)", re.I)


BARE_TYPES = {b"text": "text/plain", b"plain": "text/plain", b"html": "text/html", b"text/": "text/plain"}
MESSAGE_TYPES = ("message/rfc822", "message/global", "message/news")
ENCODED = (b"base64", b"quotedprintable")
UUENCODED = (b"xuuencode", b"uuencode", b"xuue", b"uue")


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
        if self.encoding in UUENCODED:
            from .uuencode import decode_uu, uu_files
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
