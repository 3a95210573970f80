"""Lines of plain text."""

from ..charsets.unicode_text import INVISIBLE


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
