"""Text from bytes and the label they came with, which may be missing or lie."""

import re

from .charset_codecs import EAST_ASIAN, SHIFTED, codec_for, strictly, utf8
from .unicode_text import repair_surrogates, undo_double_encoding

UTF16_MARKS = (b"\xff\xfe", b"\xfe\xff")
# Control characters except tab and the line ends; none is a second byte of a multibyte set.
CONTROLS = bytes(set(range(32)) - {9, 10, 13}) + b"\x7f"
UNWANTED = "[\x00-\x08\x0b\x0c\x0e-\x1f\x7f\uf0f0-\uf0f3]"


def decode_text(data, label, hint=""):
    """Text of data as its label says, or as its bytes say where the label is missing or lies.

    hint is a codec to prefer where nothing else tells, such as that of the message's body.
    """
    codec, text = codec_for(label) if label else "", None
    if codec in SHIFTED or b"\x1b$" in data or b"\x1b(" in data or data[:2] in UTF16_MARKS:
        from .shifted_charsets import shifted_text
        text, codec = shifted_text(data, codec), "" if codec in SHIFTED else codec
    if text is None:
        data = data.translate(None, CONTROLS)
        if data.isascii():
            return data.decode("ascii")
        text = decode_eight_bit(data, codec, hint)
        if not any(map(text.__contains__, "\uf0f0\uf0f1\uf0f2\uf0f3\ufeff")):
            return text
    return re.sub(UNWANTED, "", repair_surrogates(text)).lstrip("\ufeff")


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
    found = None
    if codec in ("", "cp1252", "iso8859-15"):
        from .charset_guess import guess
        found = guess(data, codec, hint)
    if found:
        return found[0]
    try:
        return data.decode(codec or "cp1252")
    except UnicodeDecodeError:
        return data.decode("latin-1" if codec in ("", "cp1252") else codec, "replace")


def utf8_is_meant(text, data, codec):
    """Whether valid UTF-8 is that, against a label: two GBK characters can be it by chance, not several."""
    if codec not in EAST_ASIAN or len(re.findall(rb"[\xe0-\xf4][\x80-\xbf]{2,3}", data[:4000])) >= 3:
        return True
    from .charset_guess import likeness
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
    from .charset_guess import guess, likeness
    text = strictly(data, codec)
    if text is None and codec == "euc_jp":
        from .shifted_charsets import euc_by_cp932
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
