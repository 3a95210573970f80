"""Repairs of decoded text."""

import re

INVISIBLE = re.compile("[\u00ad\u034f\u200b\u200e\u200f\u2060\ufeff]|\u200c(?=[\\s\u034f\u200c]|$)")

# Controls and marks of direction, which no file name may hold; the same as text/hidden_characters.h.
HIDDEN = re.compile("[\x00-\x1f\x7f-\x9f\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")

# What windows-1252 holds where Latin 1 has controls; written out, since its codec would have to be loaded.
CP1252_SIGNS = "€\x81‚ƒ„…†‡ˆ‰Š‹Œ\x8dŽ\x8f\x90‘’“”•–—˜™š›œ\x9džŸ"
TO_LATIN1 = {ord(c): 0x80 + i for i, c in enumerate(CP1252_SIGNS)}


def repair_surrogates(text):
    """Joins surrogate pairs and drops halves, which no UTF-8 answer could hold."""
    return text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace")


def without_hidden(text):
    return HIDDEN.sub("", text)


def undo_double_encoding(text):
    """UTF-8 that was taken for windows-1252 and encoded once more."""
    if not any(map(text.__contains__, "Ãâãäåæçèéêëìíîï")) or max(text) > "\u2122":
        return text
    try:
        once = text.translate(TO_LATIN1).encode("latin-1").decode("utf-8")
    except UnicodeError:
        return text
    return once if sum(c > "\xff" for c in once) >= 2 else text


def nfc(text):
    """Normal form C in linear time: endless runs of combining marks, which cost their square, are cut."""
    if text.isascii():
        return text
    from unicodedata import category, normalize
    if max(map(len, text.split("\n"))) <= 500:
        return normalize("NFC", text)
    pieces, start = [], 0
    while start < len(text):
        end = start + 400
        # Marks, and vowels and finals of Hangul, are composed with what stands in front of them.
        while end < min(len(text), start + 500) and (category(text[end])[0] == "M" or "\u1160" <= text[end] <= "\u11ff"):
            end += 1
        pieces.append(normalize("NFC", text[start:end]))
        start = end
    return "".join(pieces)
