"""What Outlook packs into winmail.dat: the text of the message and its attachments ([MS-OXTNEF])."""

import re

from ..bodies.plain_text import bare_ends, unix_lines
from ..charsets.decoding import decode_text, without_odd_signs
from ..limits import CLOCK, MAX_PARTS

SIGNATURE = b"\x78\x9f\x3e\x22"
BODY, PROPERTIES, CODE_PAGE = 0x0002800C, 0x00069003, 0x00069007
NEW_ATTACHMENT, TITLE, DATA, ATTACHMENT_PROPERTIES = 0x00069002, 0x00018010, 0x0006800F, 0x00069005
# Properties of MAPI.
TEXT, RTF, HTML, HTML_PAGE = 0x1000, 0x1009, 0x1013, 0x3FDE
ATTACHED_DATA, SHORT_NAME, LONG_NAME, SHOWN_NAME, MEDIA_TYPE = 0x3701, 0x3704, 0x3707, 0x3001, 0x370E
SIZES = {0x02: 4, 0x03: 4, 0x04: 4, 0x05: 8, 0x06: 8, 0x07: 8, 0x0A: 4, 0x0B: 4, 0x14: 8, 0x40: 8, 0x48: 16}
STRING8, UNICODE, BINARY, OBJECT = 0x1E, 0x1F, 0x102, 0x0D
MESSAGE_INTERFACE = bytes.fromhex("0703020000000000c000000000000046")


class Tnef:
    """text is the message's text if there is one; files are (name, type, bytes), those of messages inside included."""

    def __init__(self, data, depth=0):
        self.page, self.properties, self.body = b"", {}, b""
        self.depth, self.files = depth, []
        self.current = None
        start = data.find(SIGNATURE, 0, 4096)
        for kind, value in attributes(data, start + 6) if start >= 0 else ():
            CLOCK.check()
            self._handle(kind, value)
        self._finish()

    def _handle(self, kind, value):
        if kind == CODE_PAGE:
            self.page = b"cp%d" % int.from_bytes(value[:4], "little")
        elif kind == BODY:
            self.body = value.rstrip(b"\0")
        elif kind == PROPERTIES:
            self.properties = self._properties(value)
        elif kind == NEW_ATTACHMENT:
            self._finish()
            self.current = {}
        elif self.current is not None and kind in (TITLE, DATA):
            self.current[kind] = value
        elif self.current is not None and kind == ATTACHMENT_PROPERTIES:
            self.current.update(self._properties(value))

    def _finish(self):
        """Adds the attachment at work to the files."""
        found, self.current = self.current, None
        if not found or len(self.files) >= MAX_PARTS:
            return
        data = bytes_of(found.get(ATTACHED_DATA, found.get(DATA)))
        if data.startswith(MESSAGE_INTERFACE):
            if self.depth < 5:
                self.files += Tnef(data[16:], self.depth + 1).files
            return
        title = decode_text(found.get(TITLE, b"").rstrip(b"\0"), self.page)
        names = [self._text_of(found.get(number)) for number in (LONG_NAME, SHORT_NAME, SHOWN_NAME)]
        name = names[0] or names[1] or title or names[2]
        kind = self._text_of(found.get(MEDIA_TYPE))
        self.files.append((name, kind if re.fullmatch(r"[\w.+-]+/[\w.+-]+", kind) else "application/octet-stream", data))

    def _properties(self, data):
        try:
            return dict(properties(data, self.page))
        except (IndexError, ValueError):
            return {}

    def _text_of(self, value):
        return value if isinstance(value, str) else decode_text(bytes_of(value).rstrip(b"\0"), self.page)

    def text(self):
        """(text, whether from HTML)."""
        html = self.properties.get(HTML)
        if html:
            from ..html.text import html_text
            page = charset_of(bytes_of(self.properties.get(HTML_PAGE))) or self.page
            return html_text(html if isinstance(html, str) else decode_text(html, page)), True
        plain = self._text_of(self.properties.get(TEXT)) or decode_text(self.body, self.page)
        packed = bytes_of(self.properties.get(RTF))
        if not plain.strip() and packed:
            from .rtf_text import decompressed, rtf_text
            plain = rtf_text(decompressed(packed))
        return bare_ends(unix_lines(plain)).strip("\n"), False


def bytes_of(value):
    """A property that should be bytes, whatever type it claims."""
    return value if isinstance(value, bytes) else b""


def charset_of(page):
    number = int.from_bytes(page[:4], "little")
    return {65001: b"utf-8", 50220: b"iso-2022-jp", 28591: b"iso-8859-1", 54936: b"gb18030", 51932: b"euc-jp"}.get(
        number, b"cp%d" % number if number else b"")


def attributes(data, at):
    """(tag, value) of each attribute of the stream."""
    while at + 9 <= len(data):
        size = int.from_bytes(data[at + 5:at + 9], "little")
        yield int.from_bytes(data[at + 1:at + 5], "little"), data[at + 9:at + 9 + size]
        at += 11 + size


def properties(data, page):
    """(number, value) of each property: text, or bytes for everything else."""
    at = 4
    for _ in range(min(int.from_bytes(data[:4], "little"), 10_000)):
        kind, number = int.from_bytes(data[at:at + 2], "little"), int.from_bytes(data[at + 2:at + 4], "little")
        at += 4
        if number >= 0x8000:
            at += 24 + (padded(data, at + 20) if data[at + 16] == 1 else 0)
        several = kind & 0x1000 or kind in (STRING8, UNICODE, BINARY, OBJECT)
        count, at = (int.from_bytes(data[at:at + 4], "little"), at + 4) if several else (1, at)
        kind &= 0xFFF
        for _ in range(min(count, 10_000)):
            size = SIZES.get(kind) or int.from_bytes(data[at:at + 4], "little")
            start = at if kind in SIZES else at + 4
            if start >= len(data):
                return
            value = data[start:start + size]
            if kind == UNICODE:
                value = without_odd_signs(value.decode("utf-16-le", "replace"))
            elif kind == STRING8:
                value = decode_text(value.rstrip(b"\0"), page)
            yield number, value
            at = start + size if kind in SIZES else start + (size + 3 & ~3)


def padded(data, at):
    return int.from_bytes(data[at:at + 4], "little") + 3 & ~3
