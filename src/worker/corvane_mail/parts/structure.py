"""Finds the parts of a message."""

import re

from ..limits import CLOCK, MAX_DEPTH, MAX_PARTS
from .header_values import parameter
from .part import ENCODED, Part, read_fields

# A line of blanks alone ends the header where what follows can't be more of it.
BLANK_LINE = re.compile(rb"\n(?:\r*|[ \t][ \t\r]*(?=\n(?![ \t]|[!-9;-~]+:)))\n")
NO_FIELD = re.compile(rb"\n(?![!-9;-~]+[ \t]*:|[ \t\r\n])")
KNOWN_FIELD = (rb"(?i)\n(?:content-|mime-version|from|to|cc|subject|date|received|message-id|return-path|reply-to"
               rb"|delivered-to|x-)[^\s:]*[ \t]*:")
FIRST_FIELD = rb"\s*[!-9;-~]+:"
LIKELY_BOUNDARY = rb"(?i)\n--([^\r\n]{1,200}?)[ \t]*\r?\n(?:content-[a-z-]+[ \t]*:|\r?\n)"
# A multipart without any line of its boundary may still begin with the fields of its only part.
LONE_FIELDS = rb"(?i)\s{0,100}(?:--[^\n]{0,300}\n)?(?=content-[a-z-]{1,40}[ \t]*:)"
BOUNDARY_WINDOW = 1 << 16


class Scanner:
    """Finds the parts of a message in one pass over its lines that begin with "--".

    The boundaries of all enclosing multiparts are open at a time, so that an outer one ends what an
    inner one left unfinished. odd: the message broke the rules in a way that another reading may
    serve better. capped: a limit left parts out.
    """

    def __init__(self, data, level=0, count=0):
        self.data, self.level, self.count = data, level, count
        self.open = []        # multiparts at work: boundary, part, where it has ended or 0, level
        self.boundaries = {}  # how many of them have a boundary
        self.messages = []    # messages at work, each with the number of multiparts around it
        self.leaf = self.awaited = None
        self.odd = self.capped = False
        self.guesses = 16

    def run(self):
        root, data, at = Part(self.data), self.data, -1
        self._await(root, 0, self.level)
        while True:
            at = data.find(b"\n--", at + 1)
            if at < 0:
                break
            while self.awaited and self._read_header(at):
                pass
            if self.boundaries and not self._delimiter(at):
                break
        while self.awaited and self._read_header(len(data)):
            pass
        self._finish(len(data))
        self._unwind(0, len(data))
        return root

    def _await(self, part, at, level):
        """The fields of part begin behind the line feed data[at]."""
        self.count += 1
        self.awaited, self.header_start, self.searched, self.level = part, at, at, level

    def _read_header(self, limit):
        """Reads the awaited header if it ends before limit; False while its end isn't seen."""
        blank = BLANK_LINE.search(self.data, self.searched, limit + 1)
        if blank:
            self._enter(blank.start(), blank.end())
        elif limit == len(self.data):
            self._enter(limit, limit)
        else:
            self.searched = limit
            return False
        return True

    def _enter(self, end, body):
        """The awaited header ends at data[end]; opens the body as what the header says it is."""
        part, start, self.awaited = self.awaited, self.header_start, None
        wrong = NO_FIELD.search(self.data, start, end)
        if wrong and not re.compile(KNOWN_FIELD).search(self.data, wrong.start(), end):
            self.odd = True
            end, body = wrong.start(), wrong.start() + 1
        part.set_fields(read_fields(self.data, start, end))
        part.start, part.end = body, len(self.data)
        self.leaf = part
        if self.level >= MAX_DEPTH and part.kind.startswith(("multipart/", "message/")):
            self.capped, part.kind = True, "application/octet-stream"
        elif part.kind.startswith("multipart/"):
            self._open_multipart(part)
        elif part.is_message and (part.encoding not in ENCODED or re.compile(FIRST_FIELD).match(self.data, body)):
            part.parts, part.encoding = [Part(self.data)], b""
            self.messages.append((part, len(self.open)))
            self._await(part.parts[0], max(body - 1, 0), self.level + 1)

    def _open_multipart(self, part):
        boundary = parameter(part.parameters, b"boundary").rstrip()
        before = max(part.start - 1, 0)
        window = before + BOUNDARY_WINDOW
        if not boundary or self.data.find(b"\n--" + boundary, before, window) < 0:
            self.odd, self.guesses = True, self.guesses - 1
            likely = self.guesses >= 0 and re.compile(LIKELY_BOUNDARY).search(self.data, before, window)
            if likely and likely.group(1) not in self.boundaries:
                boundary = likely.group(1)
        if boundary:
            part.parts, self.leaf = [], None
            self.open.append([boundary, part, 0, self.level])
            self.boundaries[boundary] = self.boundaries.get(boundary, 0) + 1

    def _delimiter(self, at):
        """Acts on the line behind data[at] if it delimits an open multipart; False when there are too many parts."""
        end = self.data.find(b"\n", at + 3)
        end = len(self.data) if end < 0 else end
        line = self.data[at + 3:end].rstrip(b" \t\r")
        closing = line not in self.boundaries
        if closing:
            line, _, junk = line.rpartition(b"--")
            if line not in self.boundaries or b" " in junk:
                return True
        while self.awaited:
            self._enter(at, at)
        self._finish(at)
        multipart = self._innermost(line, at)
        multipart[2] = at if closing else 0
        if closing:
            return True
        CLOCK.check()
        if self.count >= MAX_PARTS:
            self.capped = True
            return False
        part = Part(self.data, "message/rfc822" if multipart[1].kind == "multipart/digest" else "text/plain")
        multipart[1].parts.append(part)
        self._await(part, end, multipart[3] + 1)
        return True

    def _innermost(self, boundary, at):
        """The innermost multipart with this boundary that hasn't ended, else the innermost; ends those inside it."""
        index = len(self.open) - 1
        if self.open[index][0] != boundary or self.open[index][2]:
            matching = [i for i, multipart in enumerate(self.open) if multipart[0] == boundary]
            index = max((i for i in matching if not self.open[i][2]), default=matching[-1])
        self._unwind(index + 1, at)
        return self.open[index]

    def _unwind(self, size, at):
        """Ends at data[at] what stands inside the first size multiparts at work."""
        while len(self.open) > size:
            boundary, multipart, ended, _ = self.open.pop()
            self.boundaries[boundary] -= 1
            if not self.boundaries[boundary]:
                del self.boundaries[boundary]
            self._end(multipart, at if multipart.parts else ended or at)
        while self.messages and self.messages[-1][1] >= size:
            self._end(self.messages.pop()[0], at)

    def _finish(self, at):
        """The body at work ends before the line feed data[at]."""
        part, self.leaf, self.awaited = self.leaf, None, None
        if part:
            self._end(part, at)

    def _end(self, part, at):
        before = at - 1 if at < len(self.data) and self.data[at - 1:at] == b"\r" else at
        part.end = max(part.start, before)
        multipart = part.kind.startswith("multipart/")
        if part.parts or not multipart and not part.is_message:
            return
        part.parts = None
        nested = self.level < MAX_DEPTH and self.count < MAX_PARTS
        if nested and part.encoding in ENCODED:
            self._scan_encoded(part, multipart)
        elif multipart:
            fields = re.compile(LONE_FIELDS).match(self.data, part.start, part.end) if nested else None
            part.parts = [self._scan_inside(b"\n" + self.data[fields.end():part.end])] if fields else None
            part.kind = part.kind if fields else "text/plain"

    def _scan_inside(self, data):
        inner = Scanner(data, self.level + 1, self.count)
        root = inner.run()
        self.count, self.capped = inner.count, self.capped or inner.capped
        return root

    def _scan_encoded(self, part, multipart):
        """A multipart or a message that is encoded as a whole, against the rules."""
        data = b"\n" + part.payload()
        if multipart:
            data = b"\nContent-Type: " + part.fields[b"content-type"] + b"\n" + data
        root = self._scan_inside(data)
        if not multipart:
            part.parts = [root]
        elif root.parts:
            part.parts = root.parts
        else:
            part.kind, part.data, part.start, part.end, part.encoding = "text/plain", data, root.start, root.end, b""
