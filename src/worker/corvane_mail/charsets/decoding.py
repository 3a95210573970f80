"""Text from bytes and the label they came with, which may be missing or lie."""

import re

from .label_codecs import EAST_ASIAN, SHIFTED, VENDOR_SIGNS, codec_for, strictly, utf8, western_text
from .unicode_text import CP1252_SIGNS, repair_surrogates, undo_double_encoding

UTF16_MARKS = (b"\xff\xfe", b"\xfe\xff")
ASCII = bytes(range(128))
# Control characters except tab and the line ends; none is a second byte of a multibyte set.
CONTROLS = bytes(set(range(32)) - {9, 10, 13}) + b"\x7f"
# Signs that no text for a reader holds: controls, the in-band marks, byte order marks, the vendors' additions to GBK.
ODD = re.compile("[\x80-\x9f\ud800-\uf8ff\ufeff]")
UNWANTED = "[\x00-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f\uf0f0-\uf0f3]"
HIGH_CONTROLS = dict(enumerate(CP1252_SIGNS, 0x80))


def decode_text(data, label, hint=""):
    """Text of data as its label says, or as its bytes say where the label is missing or lies.

    hint is a codec to prefer where nothing else tells, such as that of the message's body.
    """
    codec, text = codec_for(label) if label else "", None
    if codec in SHIFTED or b"\x1b" in data or b"~{" in data or data[:2] in UTF16_MARKS or b"\0" in data:
        from .shifted import shifted_text
        text, codec = shifted_text(data, codec), "" if codec in SHIFTED else codec
    if text is None:
        data = data.translate(None, CONTROLS)
        if data.isascii():
            return data.decode("ascii")
        text = decode_eight_bit(data, codec, hint)
        return without_odd_signs(text) if ODD.search(text) else text
    return without_odd_signs(text)


def without_odd_signs(text):
    text = repair_surrogates(text).translate(HIGH_CONTROLS).translate(VENDOR_SIGNS)
    return re.sub(UNWANTED, "", text).lstrip("\ufeff")


def decode_eight_bit(data, codec, hint):
    text = utf8(data)
    if text is not None and utf8_is_meant(text, data, codec):
        return undo_double_encoding(text)
    if codec and codec != "utf-8":
        text = declared_text(data, codec)
        if text is not None:
            return text
    text = damaged_utf8(data, 0 if codec == "utf-8" else 4)
    if text is not None:
        return text
    from .guess import guess
    return decode_by(guess(data, "" if codec == "utf-8" else codec, hint), data)


def utf8_is_meant(text, data, codec):
    """Whether valid UTF-8 is that, against a label: two GBK characters can be it by chance, not several.

    A character of GBK passes as one of two bytes with a chance of 1 in 7, three bytes of it as one with 1 in 50.
    """
    if codec not in EAST_ASIAN or len(re.findall(rb"[\xe0-\xf4][\x80-\xbf]{2,3}", data[:4000])) >= 3:
        return True
    from .guess import likeliness
    declared = strictly(data, codec)
    if declared is None:
        return True
    score = likeliness(text[:400], "utf-8")[0]
    score += sum(4.0 if c > "\u07ff" else 1.9 for c in text[:400] if c > "\x7f")
    return score > likeliness(declared[:400], "big5hkscs" if codec == "cp950" else codec)[0]


def declared_text(data, codec):
    """Text by the declared set where all bytes are of it and read as its writing, else None."""
    from .guess import reads_well
    text = strictly(data, codec)
    if text is None and codec == "euc_jp":
        from .shifted import euc_by_cp932
        text = euc_by_cp932(data)
    if text is None and codec not in EAST_ASIAN and codec != "cp1252":
        text = data.decode(codec, "replace")
        text = None if text.count("\ufffd") * 20 > len(data.translate(None, ASCII)) else text
    return text if text is not None and reads_well(text, codec) else None


def damaged_utf8(data, least):
    """Text of data that is UTF-8 but for some bytes: at least that many wide characters, few bad bytes; else None."""
    text = data.decode("utf-8", "replace")
    bad = text.count("\ufffd")
    wide = len(re.findall("[\u0250-\U0010ffff]", text)) - bad
    if wide < least or wide and bad > wide:
        return None
    text = data.decode("utf-8", "replace_lone")
    return text if text.count("\ufffd") * 4 <= wide else None


def decode_by(codec, data):
    """Text by a guessed set, whatever bytes it doesn't hold."""
    if codec in EAST_ASIAN:
        whole = strictly(data, "cp950") if codec == "big5hkscs" else None
        return data.decode(codec, "replace_bad") if whole is None else whole
    return western_text(data) if codec == "cp1252" else data.decode(codec, "replace")
