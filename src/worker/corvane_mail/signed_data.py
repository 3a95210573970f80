"""Opaque S/MIME signed data."""


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
