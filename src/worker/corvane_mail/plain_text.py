"""Plain texts and their relatives."""

import re

from .unicode_text import INVISIBLE


def unix_lines(text):
    if "\r" in text:
        text = text.replace("\r\r\n", "\n").replace("\r\n", "\n").replace("\r", "\n")
    return text if text.isascii() else INVISIBLE.sub("", text.replace("\xa0", " "))


def bare_ends(text):
    """Lines without the blanks at their ends."""
    return "\n".join([line.rstrip() for line in text.split("\n")]) if " \n" in text or "\t\n" in text else text


def unflow(text, delsp):
    """The paragraphs of format=flowed (RFC 3676), with ">" signs for its quotes."""
    lines, joining = [], None
    for line in text.split("\n"):
        content = line.lstrip(">")
        depth = len(line) - len(content)
        content = content[1:] if content[:1] == " " else content
        fixed = content == "-- " or content[-1:] != " "
        if joining == depth and content != "-- ":
            lines[-1].append(content)
        else:
            lines.append([">" * depth + " " if depth else "", content])
        joining = None if fixed else depth
        if delsp and not fixed:
            lines[-1][-1] = content[:-1]
    return "\n".join(map("".join, lines))


def enriched_text(text):
    """text/enriched and text/richtext (RFC 1896): commands go, single line ends are blanks."""
    text = re.sub(r"(?is)<param>[^<]*</param>", "", text.replace("<<", "\0"))
    text = re.sub(r"(?i)<(?:nl|paragraph|/paragraph)>", "\n\n", text)
    text = re.sub(r"</?[A-Za-z-]{1,60}>", "", text).replace("\0", "<")
    return re.sub(r"\n+", lambda match: match.group()[1:] or " ", text)
