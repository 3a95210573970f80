"""Sets that are not read a byte at a time: escape sequences, UTF-7, UTF-16."""

import re

from .charset_codecs import strictly, utf8

HIGH_BITS = bytes(byte | 0x80 if 0x21 <= byte <= 0x7E else byte for byte in range(256))
LOW_BITS = bytes(byte & 0x7F for byte in range(256))


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


def shifted_text(data, codec):
    """Text of data where it is written in such a set, declared or not; else None."""
    if codec.startswith("utf-16") or data[:2] in (b"\xff\xfe", b"\xfe\xff"):
        return decode_utf16(data, codec or "utf-16")
    if codec == "utf-7" and data.isascii():
        return data.decode("utf-7", "replace")
    switches = b"\x1b" in data or codec == "hz" and b"~{" in data or codec == "iso2022" and b"\x0e" in data
    if switches and (data.isascii() or codec == "iso2022" and utf8(data) is None):
        return decode_switched(data, codec)
    return None


def decode_utf16(data, codec):
    if data[:2] in (b"\xff\xfe", b"\xfe\xff"):
        codec = "utf-16"
    elif b"\0" not in data[:2000]:
        return None
    elif codec == "utf-16":
        codec = "utf-16-le" if data[1:400:2].count(0) >= data[0:400:2].count(0) else "utf-16-be"
    return data.decode(codec, "replace")


def decode_switched(data, codec):
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


def euc_by_cp932(data):
    """EUC-JP with the vendors' rows (circled digits, 髙), which Python's codec lacks; None when it isn't that."""
    def shift(match):
        return match.group(1) or jis_to_sjis(match.group(2).translate(LOW_BITS))
    return strictly(re.sub(rb"\x8e([\xa1-\xdf])|((?:[\xa1-\xfe][\xa1-\xfe])+)", shift, data), "cp932")
