"""Text of the types text/enriched and text/richtext (RFC 1896, RFC 1341)."""

import re


def enriched_text(text):
    """text/enriched and text/richtext (RFC 1896): commands go, single line ends are blanks."""
    text = re.sub(r"(?is)<param>[^<]*</param>", "", text.replace("<<", "\0"))
    text = re.sub(r"(?i)<(?:nl|paragraph|/paragraph)>", "\n\n", text)
    text = re.sub(r"</?[A-Za-z-]{1,60}>", "", text).replace("\0", "<")
    return re.sub(r"\n+", lambda match: match.group()[1:] or " ", text)
