"""Messages inside opaque S/MIME data (RFC 8551): signed, or only packed. What is encrypted stays so."""

import zlib

from ..limits import DEFAULT_LIST_BYTES, MAX_DEPTH
from ..parts.structure import Scanner

COMPRESSED = b"\x06\x0b\x2a\x86\x48\x86\xf7\x0d\x01\x09\x10\x01\x09\xa0"
CONTENT = b"\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07\x01\xa0"


def unsealed(part, whole=False):
    """The entity inside a sealed part; None where it can't be read, or is too large and must be whole."""
    data = part.payload()
    content = content_of(data)
    if content and data.find(COMPRESSED, 0, 64) >= 0:
        unpacker = zlib.decompressobj()
        try:
            content = unpacker.decompress(content, DEFAULT_LIST_BYTES)
        except zlib.error:
            return None
        content = b"" if whole and not unpacker.eof else content
    return Scanner(b"\n" + content, MAX_DEPTH // 2).run() if content else None


def content_of(data):
    """The octets of the innermost content (RFC 5652, in BER: in pieces or whole), else b""."""
    at = data.find(CONTENT)
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
