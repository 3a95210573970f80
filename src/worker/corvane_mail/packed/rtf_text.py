"""RTF as text: what Outlook sends inside winmail.dat, and mail of type text/rtf.

Source: Rich Text Format, version 1.9; [MS-OXRTFEX] for HTML that is wrapped in RTF.
"""

import re

from ..charsets.decoding import decode_text, without_odd_signs
from ..html.text import html_text
from ..limits import CLOCK

TOKEN = re.compile(rb"\\([a-zA-Z]{1,32})(-?[0-9]{1,10})? ?|\\'([0-9a-fA-F]{2})|\\(.)|([{}])|([^\\{}\r\n]+)", re.S)
BREAKS = {b"par": "\n", b"line": "\n", b"sect": "\n", b"page": "\n", b"row": "\n", b"tab": "\t", b"cell": "\t",
          b"emdash": "—", b"endash": "–", b"lquote": "‘", b"rquote": "’", b"ldblquote": "“", b"rdblquote": "”", b"bullet": "•"}
SIGNS = {b"~": "\xa0", b"_": "-", b"\n": "\n", b"\r": "\n", b"\\": "\\", b"{": "{", b"}": "}"}
UNSHOWN = frozenset((b"fonttbl", b"colortbl", b"stylesheet", b"info", b"pict", b"object", b"header", b"footer", b"generator",
                     b"themedata", b"datastore", b"listtable", b"xmlnstbl", b"fldinst"))
# The charset of a font, by which its bytes are read.
FONT_CHARSETS = {128: b"shift_jis", 129: b"euc-kr", 134: b"gbk", 136: b"big5", 161: b"windows-1253", 162: b"windows-1254",
                 177: b"windows-1255", 178: b"windows-1256", 204: b"windows-1251", 222: b"windows-874", 238: b"windows-1250"}


class RtfText:
    """Reads tokens; a group inherits its state (shown, font, bytes behind a \\u) and gives it back at its end."""

    def __init__(self, data):
        self.data = data
        self.page = b"windows-1252"
        self.fonts, self.font = {}, None
        self.shown, self.tag, self.skip = True, False, 1
        self.stack = []
        self.pending, self.left = bytearray(), 0
        self.out = []
        self.wraps_html = b"\\fromhtml1" in data[:4096]

    def text(self):
        for number, token in enumerate(TOKEN.finditer(self.data)):
            if not number & 0xFFF:
                CLOCK.check()
            word, value, byte, sign, brace, run = token.groups()
            if byte or run:
                self._bytes(bytes((int(byte, 16),)) if byte else run)
                continue
            self._flush()
            if word:
                self._word(word, int(value) if value else None)
            elif sign:
                self._sign(sign)
            else:
                self._brace(brace)
        self._flush()
        text = without_odd_signs("".join(self.out))
        return html_text(text) if self.wraps_html else text.strip("\n")

    def _bytes(self, data):
        skipped = min(self.left, len(data))
        self.left -= skipped
        if self.shown:
            self.pending += data[skipped:]

    def _flush(self):
        if self.pending:
            text = decode_text(bytes(self.pending), self.fonts.get(self.font) or self.page)
            self._write(text)
            self.pending.clear()

    def _write(self, text):
        if self.wraps_html and not self.tag:
            text = text.replace("&", "&amp;").replace("<", "&lt;")
        self.out.append(text)

    def _word(self, word, value):
        if word == b"u" and value is not None:
            if self.shown:
                self._write(chr(value & 0xFFFF))
            self.left = self.skip
            return
        if word == b"ansicpg":
            self.page = b"cp%d" % value if value else self.page
        elif word == b"uc":
            self.skip = min(value or 0, 8)
        elif word == b"f":
            self.font = value
        elif word == b"fcharset" and value in FONT_CHARSETS:
            self.fonts[self.font] = FONT_CHARSETS[value]
        elif word == b"htmlrtf":
            self.shown = value == 0
        elif word == b"htmltag":
            self.shown = self.tag = True
        elif word in UNSHOWN:
            self.shown = False
        elif self.shown and word in BREAKS and (not self.wraps_html or self.tag):
            self.out.append(BREAKS[word])

    def _sign(self, sign):
        if sign == b"*":
            self.shown = False
        elif self.shown and sign in SIGNS:
            self._write(SIGNS[sign])

    def _brace(self, brace):
        if brace == b"{":
            self.stack.append((self.shown, self.tag, self.font, self.skip))
        elif self.stack:
            self.shown, self.tag, self.font, self.skip = self.stack.pop()
        self.left = 0


def rtf_text(data):
    return RtfText(data).text()


# What every compressed text is taken to stand behind ([MS-OXRTFCP] 2.1.2.1).
LEAD = (b"{\\rtf1\\ansi\\mac\\deff0\\deftab720{\\fonttbl;}{\\f0\\fnil \\froman \\fswiss \\fmodern \\fscript \\fdecor "
        b"MS Sans SerifSymbolArialTimes New RomanCourier{\\colortbl\\red0\\green0\\blue0\r\n"
        b"\\par \\pard\\plain\\f0\\fs20\\b\\i\\u\\tab\\tx")


def decompressed(data, limit=1 << 20):
    """RTF out of its compressed form ([MS-OXRTFCP]), at most limit bytes; b"" for anything else."""
    kind, size = data[8:12], min(int.from_bytes(data[4:8], "little"), limit)
    if kind == b"MELA":
        return data[16:16 + size]
    if kind != b"LZFu":
        return b""
    out, at = bytearray(LEAD), 16
    while at < len(data) and len(out) < size + len(LEAD):
        flags = data[at]
        at += 1
        for bit in range(8):
            if not flags >> bit & 1:
                out += data[at:at + 1]
                at += 1
                continue
            pair = int.from_bytes(data[at:at + 2], "big")
            at += 2
            back = (len(out) - (pair >> 4)) % 4096
            if at > len(data) or not back or back > len(out):
                return bytes(out[len(LEAD):])
            start, size_of_copy = len(out) - back, (pair & 15) + 2
            piece = out[start:start + size_of_copy]
            out += (piece * (size_of_copy // len(piece) + 1))[:size_of_copy]
        CLOCK.check()
    return bytes(out[len(LEAD):])
