"""Files that stand uuencoded in a text."""

import binascii
import re


def decode_uu(lines):
    decoded = []
    for line in lines:
        size = (((line[0] - 32) & 63) * 4 + 5) // 3 if line else 0
        try:
            decoded.append(binascii.a2b_uu(line))
        except binascii.Error:
            try:
                decoded.append(binascii.a2b_uu(line[:size]))
            except binascii.Error:
                continue
    return b"".join(decoded)


def uu_files(data):
    """(start, end, name, lines) of the uuencoded files inside a text body."""
    at = 0 if data.startswith(b"begin ") else data.find(b"\nbegin ") + 1
    while data.startswith(b"begin ", at):
        head = re.compile(rb"begin [0-7]{3,4} ([^\r\n]{1,255})\r?\n([!-`])([ -`]*)\r?\n").match(data, at)
        after = at + 1
        if head and ((head.group(2)[0] - 32) & 63) * 4 // 3 <= len(head.group(3)) + 3:
            after = data.find(b"\nend", at)
            if after < 0:
                return
            yield at, after + 4, head.group(1), data[data.find(b"\n", at) + 1:after + 1].splitlines()
        at = data.find(b"\nbegin ", after) + 1
        if not at:
            return


def without_uu_files(data):
    """A plain body with each uuencoded file inside replaced by its name."""
    kept, at = [], 0
    for start, end, name, _ in uu_files(data):
        kept += data[at:start], b"[" + name + b"]"
        at = end
    return b"".join(kept) + data[at:]
