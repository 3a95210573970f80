"""Entities, and line ends for the layout between texts."""

import re
from functools import lru_cache

from ..charsets.unicode_text import INVISIBLE, repair_surrogates

# Layout that the writer puts between texts; text itself holds no such characters any more.
BREAK, BLOCK, PARAGRAPH, SECTION, ROW, CELL = "\x01", "\x02", "\x03", "\x04", "\x05", "\x06"
BULLET, BULLET_END, HARD_SPACE = "\x0e", "\x0f", "\x10"
SIGNATURE_ON, SIGNATURE_OFF, QUOTE_ON, QUOTE_OFF = "\uf0f0", "\uf0f2", "\uf0f1", "\uf0f3"
ENTITIES = {"nbsp": " ", "amp": "&", "lt": "<", "gt": ">", "quot": '"', "apos": "'", "copy": "©", "reg": "®",
            "hellip": "…", "mdash": "—", "ndash": "–", "lsquo": "‘", "rsquo": "’", "ldquo": "“", "rdquo": "”",
            "bull": "•", "middot": "·", "trade": "™", "times": "×", "raquo": "»", "laquo": "«", "zwnj": ""}
ENTITY = re.compile(r"&(?:#[xX]([0-9a-fA-F]{1,8})|#([0-9]{1,9})|([a-zA-Z][a-zA-Z0-9]{1,31}));?")
GAP = re.compile(" ?[\x01-\x06][\x01-\x06 ]*")


def entity(match):
    name = match.group(3)
    if name:
        return ENTITIES[name] if name in ENTITIES else rare_entity(name, match.group())
    code = int(match.group(1), 16) if match.group(1) else int(match.group(2))
    if 0x80 <= code <= 0x9F:
        return bytes((code,)).decode("cp1252", "ignore")
    if code < 32 or code == 0x7F or 0xF0F0 <= code <= 0xF0F3:
        return " " if code in (9, 10, 13) else ""
    return chr(code) if code <= 0x10FFFF else "\ufffd"


def unescaped(text):
    if "&" in text:
        text = ENTITY.sub(entity, text)
    if text.isascii():
        return text
    return INVISIBLE.sub("", repair_surrogates(text) if re.search("[\ud800-\udfff]", text) else text)


def rare_entity(name, written):
    from html.entities import html5
    return html5.get(name + ";" if written.endswith(";") else name, written)


@lru_cache(maxsize=1024)
def gap(run):
    """Line ends (or a tab between cells) for the layout between two texts."""
    breaks = run.count(BREAK)
    if SECTION in run or breaks > 1:
        return "\n\n"
    if ROW in run:
        return "\n"
    if CELL in run:
        return "\t"
    return "\n\n" if PARAGRAPH in run or breaks and BLOCK in run.partition(BREAK)[0] else "\n"


def arrange(text):
    """Lines of text from what HtmlText wrote."""
    text = unescaped(text)
    text = re.sub(r"[ \t\r\n\f\v\u00a0\u2002\u2003\u2009]+", " ", text) if "\u3000" in text else " ".join(text.split())
    if BULLET in text:
        bullet = BULLET + "([^" + BULLET_END + "]*)" + BULLET_END + "[\x01-\x06 ]*"
        text = re.sub(bullet, r"\1", re.sub(bullet + "(?=" + BULLET + "|$)", "", text))
    text = GAP.sub(lambda match: gap(match.group().replace(" ", "")[:64]), text)
    return text.replace(HARD_SPACE, " ").strip("\n\t ")
