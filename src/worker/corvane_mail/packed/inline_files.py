"""Files that stand inside a text, uuencoded or by yEnc (version 1.3 of its draft)."""

import binascii
import re

UU_HEAD = re.compile(rb"begin [0-7]{3,4} ([^\r\n]{1,255})\r?\n([!-`])([ -`]*)\r?\n")
YENC_HEAD = re.compile(rb"=ybegin [^\r\n]{0,200}?name=([^\r\n]{1,255})\r?\n(?:=ypart [^\r\n]*\r?\n)?")
YENC_BYTES = bytes((byte - 42) & 0xFF for byte in range(256))


class InlineFile:
    """A file at data[start:end] of a text; its name is as raw as the text."""

    __slots__ = ("start", "end", "name", "contents", "decode")

    def __init__(self, start, end, name, contents, decode):
        self.start, self.end, self.name, self.contents, self.decode = start, end, name, contents, decode

    def data(self):
        return self.decode(self.contents)


def may_hold_files(data):
    return b"begin " in data


def inline_files(data):
    """The files inside a text, in their order."""
    files = []
    for mark, read in ((b"begin ", uu_file), (b"=ybegin ", yenc_file)):
        at = 0 if data.startswith(mark) else data.find(b"\n" + mark) + 1
        while at or data.startswith(mark):
            found, ended = read(data, at)
            if found:
                files.append(found)
            elif not ended:
                break
            at = data.find(b"\n" + mark, found.end if found else at + 1) + 1
            if not at:
                break
    return sorted(files, key=lambda file: file.start)


def uu_file(data, at):
    """(the file that begins at data[at] or None, whether an end follows at all)."""
    head = UU_HEAD.match(data, at)
    if not head or ((head.group(2)[0] - 32) & 63) * 4 // 3 > len(head.group(3)) + 3:
        return None, True
    after = data.find(b"\nend", at)
    if after < 0:
        return None, False
    return InlineFile(at, after + 4, head.group(1), data[head.start(2):after + 1], decode_uu), True


def yenc_file(data, at):
    head = YENC_HEAD.match(data, at)
    if not head:
        return None, True
    after = data.find(b"\n=yend", at)
    if after < 0:
        return None, False
    end = data.find(b"\n", after + 1)
    end = len(data) if end < 0 else end
    return InlineFile(at, end, head.group(1).strip(b" \""), data[head.end():after], decode_yenc), True


def decode_uu(contents):
    decoded = []
    for line in contents.splitlines():
        size = (((line[0] - 32) & 63) * 4 + 5) // 3 if line else 0
        try:
            decoded.append(binascii.a2b_uu(line))
        except binascii.Error:
            try:
                decoded.append(binascii.a2b_uu(line[:size]))
            except binascii.Error:
                continue
    return b"".join(decoded)


def decode_yenc(contents):
    plain = contents.replace(b"\n..", b"\n.").translate(None, b"\r\n")
    plain = re.sub(rb"=(.)", lambda match: bytes(((match.group(1)[0] - 64) & 0xFF,)), plain, flags=re.S)
    return plain.translate(YENC_BYTES)


def without_files(data):
    """A text with each file inside replaced by its name."""
    kept, at = [], 0
    for file in inline_files(data):
        if file.start >= at:
            kept += data[at:file.start], b"[" + file.name + b"]"
            at = file.end
    return b"".join(kept) + data[at:]
