"""HTML as the text that a reader would see."""

import re

from ..limits import CLOCK, MAX_DEPTH
from .layout import (BLOCK, BREAK, BULLET, BULLET_END, CELL, HARD_SPACE, PARAGRAPH, QUOTE_OFF, QUOTE_ON, ROW, SECTION,
                     SIGNATURE_OFF, SIGNATURE_ON, arrange)
from .marks import HIDEABLE, attribute, hidden_by, hiding_of, place_marks, region_kind

LAYOUT = {name: layout for layout, names in {
    BREAK: "br", CELL: "td th", ROW: "tr thead tbody tfoot caption",
    PARAGRAPH: "p h1 h2 h3 h4 h5 h6 dl blockquote form hr pre",
    BLOCK: "div dt dd center address header footer section article main nav aside figure figcaption fieldset legend"
           " details summary"
           " option body li"}.items() for name in names.split()}
UNSHOWN = frozenset("style script title template xml svg".split())
STATEFUL = frozenset("a li ol ul table img pre".split())

TAG = re.compile(r"/?[a-zA-Z][^\s/>]*")
KEEPS_LINES = r"white-space\s*:\s*(?:pre|break-spaces)"


class HtmlText:
    """Writes what a reader would see of one HTML document, block by block.

    The document is cut at "<" once; each piece is a tag and the text behind it. What isn't shown is
    skipped to its end, or shown where it has none.
    """

    def __init__(self, html):
        self.pieces = html.split("<")
        self.out = [self.pieces[0]]
        self.at = 1
        self.known = {}       # tags seen before: what they write, and their name
        self.regions = []     # open quotes, signatures, preformatted elements: name, depth, end mark, kept lines
        self.watched = None   # the name of the innermost region
        self.preformatted = self.tables = self.images = 0
        self.lists = []       # the next number of each open list, 0 for bullets
        self.anchors = []
        self.endless = set()  # elements found to have no end
        self.hidden = set()   # classes and identifiers that the style sheet hides

    def text(self):
        pieces, out, known = self.pieces, self.out, self.known
        while self.at < len(pieces):
            piece = pieces[self.at]
            self.at += 1
            head, _, text = piece.partition(">")
            hit = known.get(head)
            if hit is None or hit[1] == self.watched or self.preformatted:
                text = self._tag(piece, head, text)
            else:
                out.append(hit[0])
            if text:
                out.append(text)
        out.extend(region[2] for region in reversed(self.regions))
        return arrange("".join(out))

    def _tag(self, piece, head, text):
        """Writes what the tag stands for; returns the text behind it."""
        if not self.at & 0xFF:
            CLOCK.check()
        match = TAG.match(head)
        if not match:
            return self._keep_lines(self._no_tag(piece, head, text))
        name = match.group().lower()
        if "@" in name or "." in name or name in ("http:", "https:"):
            return "<" + piece
        for quote in "\"'":
            if head.count(quote) & 1 and quote in text and re.search("=\\s*" + quote + "[^" + quote + "]*$", head):
                head, text = reopened(head, text, quote)
        if name[0] == "/":
            self._close(name[1:], head)
        elif name in UNSHOWN:
            return self._skip_to_end(name)
        else:
            known = len(head) > len(name) and name not in self.endless
            hiding = hiding_of(name, head, self.hidden) if known else ""
            if hiding and self._skip_hidden(name, hiding):
                return ""
            self._open(name, head, cached=not hiding)
        return self._keep_lines(text)

    def _open(self, name, head, cached):
        around = len(self.regions)
        mark = self._enter_region(name, head) if len(head) > len(name) else ""
        token = self._stateful(name, head) if name in STATEFUL else LAYOUT.get(name, "")
        self.out.append(mark + token)
        if len(self.regions) > around:
            return
        if self.watched == name:
            self.regions[-1][1] += 1
        if cached and name not in STATEFUL and len(self.known) < 500:
            self.known[head] = (token, name)

    def _close(self, name, head):
        self.out.append(self._stateful_end(name) if name in STATEFUL else LAYOUT.get(name, ""))
        if self.watched == name:
            self.regions[-1][1] -= 1
            if not self.regions[-1][1]:
                _, _, end_mark, kept = self.regions.pop()
                self.out.append(end_mark)
                self.preformatted -= kept
                self.watched = self.regions[-1][0] if self.regions else None
        elif name not in STATEFUL and len(self.known) < 500:
            self.known[head] = (self.out[-1], name)

    def _keep_lines(self, text):
        return text.replace(" ", HARD_SPACE).replace("\n", BREAK) if self.preformatted else text

    def _no_tag(self, piece, head, text):
        if head[:3] == "!--":
            return self._skip_comment(piece, text)
        if head[:1] in ("!", "?"):
            return text
        return text if head == "/" else "<" + piece

    def _skip_comment(self, piece, text):
        if piece[3:4] == ">" or piece[3:5] == "->":
            return text
        if "-->" in piece:
            return piece.split("-->", 1)[1]
        if "!--" not in self.endless:
            for at in range(self.at, len(self.pieces)):
                if "-->" in self.pieces[at]:
                    self.at = at + 1
                    return self.pieces[at].split("-->", 1)[1]
        self.endless.add("!--")
        return text

    def _skip_to_end(self, name):
        end = "/" + name
        if name not in self.endless:
            for at in range(self.at, len(self.pieces)):
                if self.pieces[at][:len(end)].lower() == end:
                    if name == "style":
                        self.hidden |= hidden_by("<".join(self.pieces[self.at - 1:at]).partition(">")[2])
                    self.at = at + 1
                    return self._keep_lines(self.pieces[at].partition(">")[2])
        self.endless.add(name)
        return ""

    def _skip_hidden(self, name, hiding):
        """Goes behind a hidden element; False where it has no end, or sets letters of some size again."""
        depth, end = 1, "/" + name
        last = len(self.pieces) if hiding == "all" else min(len(self.pieces), self.at + 50)
        for at in range(self.at, last):
            low = self.pieces[at][:len(end) + 1].lower()
            if low.startswith(end) and not low[len(end):].isalnum():
                depth -= 1
            elif low.startswith(name) and not low[len(name):len(name) + 1].isalnum():
                depth += 1
            elif hiding == "tiny" and "font-size" in self.pieces[at]:
                return False
            if not depth:
                self.at = at + 1
                self.out += LAYOUT.get(name, ""), self._keep_lines(self.pieces[at].partition(">")[2])
                return True
        if hiding == "all":
            self.endless.add(name)
        return False

    def _stateful(self, name, head):
        if name == "a":
            self.anchors.append((len(self.out), self.images, attribute(head, "href")))
            return ""
        if name == "img":
            self.images += 1
            alt = "" if hiding_of("span", head, self.hidden) else attribute(head, "alt").strip()
            return " " + alt + " " if alt else ""
        if name == "li":
            return BLOCK + self._bullet()
        if name == "table":
            self.tables += 1
            return SECTION if self.tables == 1 else ROW
        if name == "pre":
            self.preformatted += 1
            return PARAGRAPH
        start = attribute(head, "start")
        number = int(start) if re.fullmatch("[0-9]{1,6}", start) else 1
        self.lists.append(number if name == "ol" else 0)
        return PARAGRAPH if len(self.lists) == 1 else BLOCK

    def _stateful_end(self, name):
        if name == "a":
            return self._address()
        if name == "table":
            self.tables = max(0, self.tables - 1)
            return ROW if self.tables else SECTION
        if name in ("ul", "ol"):
            self.lists[-1:] = []
            return BLOCK if self.lists else PARAGRAPH
        if name == "pre":
            self.preformatted = max(0, self.preformatted - 1)
        return LAYOUT.get(name, "")

    def _bullet(self):
        sign = "-"
        if self.lists and self.lists[-1]:
            sign = str(self.lists[-1]) + "."
            self.lists[-1] += 1
        indent = HARD_SPACE * 2 * min(len(self.lists) - 1, 10)
        return BULLET + indent + sign + HARD_SPACE + BULLET_END

    def _address(self):
        """A link shows its text; its address only where it would show nothing at all."""
        if not self.anchors:
            return ""
        at, images, address = self.anchors.pop()
        if self.images > images or len(self.out) - at > 50 or "".join(self.out[at:]).strip(" \n\r\t\xa0\x01\x02"):
            return ""
        return address if address[:4].lower() == "http" and len(address) < 300 else ""

    def _enter_region(self, name, head):
        """The mark where a quote or a signature of a known client begins, "" for anything else."""
        low = head.lower()
        if "white-space" in low and name in HIDEABLE and re.search(KEEPS_LINES, low):
            self.preformatted += len(self.regions) < MAX_DEPTH
            return self._open_region(name, "", True)
        if "class" not in low and "id" not in low and "cite" not in low and "border-top" not in low:
            return ""
        kind = region_kind(name, head)
        if kind == "signature":
            return self._open_region(name, SIGNATURE_OFF)
        if kind == "quote":
            return self._open_region(name, QUOTE_OFF)
        if kind == "quote to the end" and not any(region[2] == QUOTE_OFF for region in self.regions):
            return self._open_region("", QUOTE_OFF)
        return ""

    def _open_region(self, name, end_mark, kept=False):
        if len(self.regions) >= MAX_DEPTH:
            return ""
        self.regions.append([name, 1, end_mark, kept])
        self.watched = name
        return {SIGNATURE_OFF: SIGNATURE_ON, QUOTE_OFF: QUOTE_ON}.get(end_mark, "")


def reopened(head, text, quote):
    """Takes into a tag the rest of a quoted attribute that holds ">"."""
    value, _, rest = text.partition(quote)
    more, close, behind = rest.partition(">")
    return (head + ">" + value + quote + more, behind) if close and len(value) < 2000 else (head, text)


def html_text(html):
    text = HtmlText(html.replace("\r\n", "\n")).text()
    return place_marks(text) if re.search("[\uf0f0-\uf0f3]", text) else text
