"""Finds an attachment by a name that may have been cleaned or decoded elsewhere."""

import re

from ..charsets.unicode_text import nfc
from ..parts.header_values import decode_words, unpercent


def cleaned(name):
    """A name as the program's own cleaning of attachment names leaves it, near enough to compare."""
    name = name.strip("\"' \t\r\n")
    head, quotes, rest = name.partition("''")
    if quotes:
        known = re.fullmatch(r"(?i)utf-?8|us-ascii|gbk|gb2312|big5|iso-.*|windows-.*", head)
        name = unpercent((rest if known else name).encode("utf-8", "replace")).decode("utf-8", "replace")
    if "=?" in name:
        name = decode_words(name.encode("utf-8", "replace")).replace("_", " ")
    bracket = re.match(r"<[^>]*@[^>]*>(.*)", name, re.S)
    name = (bracket.group(1) if bracket else name).replace("\\", "").strip()
    return ".".join(filter(None, (piece.strip() for piece in name.split(".")))) or name


def squeezed(name):
    return "".join(c for c in nfc(cleaned(name)).casefold() if c.isalnum())


def ends_path(path, name):
    """Whether a path that lost its backslashes, as in C:UserslmA.xls, may be that of a file of this name."""
    return bool(re.match(r"[A-Za-z]:", path)) and bool(squeezed(name)) and squeezed(path).endswith(squeezed(name))


def find_attachment(attachments, wanted, occurrence=0):
    """The attachment of that name, or a later one of those that have it; the likeness asked for goes from the very name
    down to letters and digits, until there are as many."""
    for form in (str, nfc, lambda name: nfc(cleaned(name)), squeezed):
        key = form(wanted)
        found = [each for each in attachments if key and form(each.name) == key]
        if occurrence < len(found):
            return found[occurrence]
    of_path = [each for each in attachments if ends_path(wanted, each.name)]
    return of_path[0] if len(of_path) == 1 and occurrence == 0 else None
