"""What markup says of hidden elements, quotes and signatures."""

import re

from .layout import QUOTE_OFF, QUOTE_ON, SIGNATURE_OFF, SIGNATURE_ON

SIGNATURE_MARK = "\uf0f0SIG\uf0f0"
QUOTE_MARK = "\uf0f1QUOTE\uf0f1"

HIDEABLE = frozenset("div span p td tr table tbody font center a b i u strong em li ul ol section h1 h2 h3 h4 h5 h6"
                     " label button pre header footer article main aside small blockquote".split())
HIDING = re.compile(r"display\s*:\s*none|visibility\s*:\s*hidden|opacity\s*:\s*0\s*(?:[;!]|$)", re.I)
NO_HEIGHT = r"(?i)(?<![-\w])(?:max-)?height\s*:\s*0(?:px)?\s*(?:[;!]|$)"
TINY = re.compile(r"font-size\s*:\s*0(?:\.0+)?(?:px|pt|em|%)?\s*(?:[;!]|$)", re.I)
OUTLOOK_HEAD = r"(?i)border:\s*none;\s*border-top:\s*solid #(?:E1E1E1|B5C4DF) 1\.0pt"
# Classes and identifiers by which known clients mark quotes, quotes that last to the end, signatures.
QUOTES = frozenset("gmail_quote gmail_quote_container yahoo_quoted protonmail_quote tutanota_quote zmail_extra"
                   " moz-forward-container moz-cite-prefix isreplycontent ntes-mailmaster-quote"
                   " mail-editor-reference-message-container olk_src_body_section".split())
QUOTE_STARTS = frozenset("divrplyfwdmsg x_divrplyfwdmsg".split())
SIGNATURES = frozenset("gmail_signature apple-mail-signature applemailsignature moz-signature protonmail_signature_block"
                       " tutanota_signature zmail_signature ms-outlook-mobile-signature spneditorsign_app"
                       " ntes-mailmaster-signature".split())
KNOWN_MARKUP = (b"_quote", b"cite", b"signature", b"zmail_", b"moz-forward", b"isreplycontent", b"mailmaster", b"rplyfwdmsg",
                b"reference-message", b"olk_src_body", b"editorsign", b"border-top:solid #")


def attribute(head, name):
    match = re.search(r"(?i)[\s\"'/]" + name + r"\s*=\s*(?:\"([^\"]*)|'([^']*)|([^\s\"'>]+))", head)
    return (match.group(1) or match.group(2) or match.group(3) or "")[:2000] if match else ""


def hidden_by(style):
    """Classes (as ".name") and identifiers ("#name") that a style sheet hides everywhere, so not under conditions."""
    if not HIDING.search(style):
        return set()
    names, depth, start, selectors = set(), 0, 0, ""
    first, *others = style.replace("<!--", "").replace("-->", "").split("/*")
    style = first + "".join(piece.partition("*/")[2] for piece in others)
    for brace in re.finditer("[{}]", style):
        if brace.group() == "{":
            selectors = style[start:brace.start()] if not depth else ""
            depth += 1
        else:
            depth = max(0, depth - 1)
            if not depth and selectors and HIDING.search(style, start, brace.start()):
                names.update(re.findall(r"(?:^|,)\s*[a-z]{0,10}([.#][\w-]+)\s*(?=,|$)", selectors))
            selectors = selectors if depth else ""
        start = brace.end()
    return names


def hiding_of(name, head, hidden):
    """"all" for an element that isn't shown, "tiny" for one whose own letters have no size, else ""."""
    if name not in HIDEABLE:
        return ""
    low = head.lower()
    if hidden and not hidden.isdisjoint(["." + each for each in attribute(head, "class").split()] + ["#" + attribute(head, "id")]):
        return "all"
    if "style" in low:
        style = attribute(head, "style")
        if HIDING.search(style) or "overflow" in style and re.search(NO_HEIGHT, style):
            return "all"
        if TINY.search(style):
            return "tiny"
    if "hidden" in low and re.search(r"\shidden(?:[\s=/]|$)", re.sub(r"\"[^\"]*\"?|'[^']*'?", "", low)):
        return "all"
    return ""


def region_kind(name, head):
    identity = attribute(head, "id")
    names = (attribute(head, "class") + " " + identity).lower().split()
    if name == "blockquote" and attribute(head, "type").lower() == "cite" or not QUOTES.isdisjoint(names):
        return "quote"
    if not SIGNATURES.isdisjoint(names) or identity == "Signature":
        return "signature"
    if not QUOTE_STARTS.isdisjoint(names) or name == "div" and re.search(OUTLOOK_HEAD, attribute(head, "style")):
        return "quote to the end"
    return ""


def place_marks(text):
    """Puts the two in-band markers where a known client's signature and closing quote begin.

    A quote counts only when nothing but quotes and signatures follows it: behind its marker the
    reader folds everything away, and an answer written below or between quotes must not go with it.
    """
    pieces, depth, signed, main = [], 0, False, -1
    for piece in re.split("([\uf0f0-\uf0f3])", text):
        if piece in (QUOTE_ON, QUOTE_OFF):
            depth = max(0, depth + (1 if piece == QUOTE_ON else -1))
        elif piece in (SIGNATURE_ON, SIGNATURE_OFF):
            signed = piece == SIGNATURE_ON
        else:
            main = len(pieces) if piece.strip() and not depth and not signed else main
            pieces.append((piece, depth, signed))
    if main < 0:
        return re.sub("[\uf0f0-\uf0f3]", "", text)
    written, kind = [re.sub("\n{3,}", "\n\n", "".join(piece for piece, _, _ in pieces[:main + 1])).strip("\n")], (0, False)
    for piece, depth, signed in pieces[main + 1:]:
        if not piece.strip():
            continue
        if signed and not kind[1]:
            written.append(SIGNATURE_MARK)
        elif not signed and (kind[1] or depth > kind[0]):
            written.append(QUOTE_MARK)
        written.append(piece.strip("\n"))
        kind = (depth, signed)
    return "\n".join(written)
