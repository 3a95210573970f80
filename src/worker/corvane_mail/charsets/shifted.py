"""Sets that are not read a byte at a time: escape sequences, UTF-7, UTF-16."""

import re

from .label_codecs import strictly, utf8

HIGH_BITS = bytes(byte | 0x80 if 0x21 <= byte <= 0x7E else byte for byte in range(256))
HZ_RUN = re.compile(rb"~\{(?:[!-w][!-~])+~\}")
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
    if codec.startswith(("utf-16", "utf-32")) or data[:2] in (b"\xff\xfe", b"\xfe\xff"):
        return decode_wide(data, codec)
    if data.count(0) * 5 > len(data):
        text = decode_wide(data, "")
        return text if text is not None and usual(text) * 2 > len(text[:400]) else None
    if codec == "utf-7" and data.isascii():
        return decode_utf7(data)
    if codec == "iso2022" and b"\x1b" not in data and b"$" in data:
        data = with_escapes(data)
    if b"~{" in data and codec in ("hz", "gb18030", "") and data.isascii() and HZ_RUN.search(data):
        return decode_switched(data, "hz")
    switches = b"\x1b" in data or codec == "iso2022" and b"\x0e" in data
    if switches and (data.isascii() or codec == "iso2022" and utf8(data) is None):
        return decode_switched(data, codec)
    return None


def with_escapes(data):
    """ISO-2022-JP whose escape characters an old mail server took away: "$B" and pairs up to "(B" in one line."""
    pieces, at, start = [], 0, -1
    for mark in re.finditer(rb"\$[@B]|\([BJ]|\n", data):
        if mark.group()[:1] == b"$":
            start = mark.start() if start < 0 else start
        elif mark.group() == b"\n":
            start = -1
        elif start >= 0 and not (mark.start() - start) & 1:
            pieces += data[at:start], b"\x1b", data[start:mark.start()], b"\x1b"
            at, start = mark.start(), -1
    return b"".join(pieces) + data[at:]


def decode_wide(data, codec):
    """UTF-16 or UTF-32; without a byte order mark the order that makes more usual characters wins."""
    if data[:4] in (b"\xff\xfe\0\0", b"\0\0\xfe\xff"):
        return data.decode("utf-32", "replace")
    if data[:2] in (b"\xff\xfe", b"\xfe\xff"):
        return data.decode("utf-16", "replace")
    if b"\0" not in data[:2000] and utf8(data) is not None or in_single_bytes(data[:2000]):
        return None
    if codec.endswith("e"):
        return data.decode(codec, "replace")
    return max((data.decode((codec or "utf-16") + order, "replace") for order in ("-le", "-be")), key=usual)


def in_single_bytes(data):
    """Whether most bytes are ASCII in both places of a pair, as two bytes a character never are."""
    halves = data[::2], data[1::2]
    return all(sum(0x20 <= byte <= 0x7E for byte in half) * 10 > len(half) * 7 for half in halves)


def usual(text):
    """How many of the first 400 characters are such as texts are made of."""
    return sum("\x09" <= c <= "\x7e" or "\u4e00" <= c < "\u9000" or "\u3000" <= c < "\u3100" for c in text[:400])


def decode_utf7(data):
    """UTF-7 run by run, since what mailers call so may hold a plus sign that begins nothing."""
    def run(match):
        try:
            return match.group().decode("utf-7")
        except UnicodeError:
            return match.group().decode("ascii")
    text, end = [], 0
    for match in re.finditer(rb"\+[A-Za-z0-9+/]*-?", data):
        text += data[end:match.start()].decode("ascii"), run(match)
        end = match.end()
    return "".join(text) + data[end:].decode("ascii")


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
    for name in ("iso2022_jp_2", "iso2022_jp_ext", "iso2022_jp_2004"):
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
