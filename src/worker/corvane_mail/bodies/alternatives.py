"""Which of the alternatives of a message a reader would choose."""

import re

from ..html.marks import KNOWN_MARKUP, QUOTE_MARK, SIGNATURE_MARK
from ..parts.part import HTML_TYPES

STUB = (r"(?:not|n't) (?:support|display|render|view|read|able)[^.\n]{0,40}html|view (?:it|this|the) [^.\n]{0,40}"
        r"(?:browser|online)|html[- ]?(?:capable|enabled|compatible|e-?mail|format|message|version)"
        r"|不支持[^\n]{0,20}html|html[^\n]{0,8}(?:格式|邮件|郵件|メール)|支持\s*html")
MARKUP_IN_TEXT = r"(?i)&nbsp;|</?(?:div|span|td|font|p)\b"


def repeats(text, earlier):
    return len(text) > 20 and abs(len(text) - len(earlier)) < 200 and text.split() == earlier.split()


def html_source(part):
    while part.parts:
        part = part.parts[0]
    return part.payload(text=True) if part.kind in HTML_TYPES else b""


def may_be_poorer(plain, source):
    """Whether the rich alternative must be looked at: a cheap test that most mail passes."""
    own = without_links(plain)
    if len(own) * 8 < len(source) or not own.strip() or is_damaged(plain) or "\ufffd" in plain or is_stub(plain):
        return True
    low = source.lower()
    return any(map(low.__contains__, KNOWN_MARKUP))


def is_damaged(plain):
    return plain.count("?") * 5 > len(plain) or ("<" in plain or "&" in plain) and bool(re.search(MARKUP_IN_TEXT, plain))


def is_stub(plain):
    low = plain.lower() if len(plain) < 600 else ""
    return ("html" in low or "view" in low) and bool(re.search(STUB, low))


def is_better(rich, plain):
    rich_size = len("".join(rich.split()))
    if is_stub(plain) or rich.count("\ufffd") < plain.count("\ufffd"):
        return rich_size >= 10
    if is_damaged(plain) or QUOTE_MARK in rich or SIGNATURE_MARK in rich:
        return True
    return len("".join(without_links(plain).split())) < rich_size * 0.6


def without_links(plain):
    return re.sub(r"https?://\S+", "", plain) if "://" in plain else plain
