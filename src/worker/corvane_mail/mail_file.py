"""Message files."""

import os
import re
import stat

from .limits import Failure
from .parts.structure import FIRST_FIELD

OPEN_FLAGS = os.O_RDONLY | sum(getattr(os, flag, 0) for flag in ("O_NONBLOCK", "O_NOCTTY", "O_CLOEXEC", "O_BINARY"))


def read_file(path, limit):
    """(bytes, size of the file): at most limit bytes of a regular file, with a line feed in front."""
    try:
        descriptor = os.open(path, OPEN_FLAGS)
    except FileNotFoundError:
        raise Failure("找不到邮件文件：" + path) from None
    except PermissionError:
        raise Failure("没有权限读取邮件文件：" + path) from None
    except (OSError, ValueError):
        raise Failure("无法打开邮件文件：" + path) from None
    try:
        status = os.fstat(descriptor)
        if not stat.S_ISREG(status.st_mode):
            raise Failure("不是普通文件：" + path)
        chunks, left = [b"\n"], limit
        while left > 0:
            # One byte more than the file should have, so that a short read shows its end.
            asked = min(left, max(status.st_size + 1, 4096), 16 << 20)
            chunk = os.read(descriptor, asked)
            chunks.append(chunk)
            left -= len(chunk)
            if len(chunk) < asked:
                break
        return b"".join(chunks), status.st_size
    except OSError:
        raise Failure("读取邮件文件失败：" + path) from None
    finally:
        os.close(descriptor)


class Mail:
    """A message: its bytes behind one line feed, without what an .emlx holds around it.

    size is that of the whole file; cut tells that the limit left out some of it.
    """

    def __init__(self, data, size, is_emlx):
        self.size, self.cut = size, size > len(data) - 1
        self.data = message_bytes(data, is_emlx, self.cut)

    @classmethod
    def of_file(cls, path, limit):
        return cls(*read_file(path, limit), path.lower().endswith(".emlx"))

    @classmethod
    def of_text(cls, text, limit):
        data = text.encode("utf-8", "replace")
        return cls(b"\n" + data[:limit], len(data), False)


def message_bytes(data, is_emlx, cut):
    """The message itself, whatever stands before or behind it in its file."""
    first_field = re.compile(FIRST_FIELD)
    if not is_emlx and data[1:2].isalpha() and not data.startswith(b"\nFrom ") and b"\n" in data[1:8192]:
        return data
    count = re.match(rb"\n[ \t]*([+-]?\d{1,18})[ \t]*\r?\n", data)
    if count and (is_emlx or first_field.match(data, count.end())):
        data = cut_emlx(data, count.end(), int(count.group(1)), cut)
    elif is_emlx:
        data = cut_emlx(data, 1 if first_field.match(data, 1) else data.find(b"\n", 1) + 1, -1, cut)
    if data[1:3] in (b"\xff\xfe", b"\xfe\xff"):
        data = b"\n" + data[1:].decode("utf-16", "replace").encode("utf-8", "replace")
    if b"\n" not in data[1:8192] and b"\r" in data[1:8192]:
        data = data.replace(b"\r\n", b"\n").replace(b"\r", b"\n")
    lead = re.match(rb"\n(?:\xef\xbb\xbf)?(?:\r?\n){0,100}(?:>?From [^\n]*\n)?", data).end()
    return b"\n" + data[lead:] if lead > 1 and first_field.match(data, lead) else data


def cut_emlx(data, start, count, cut):
    """The counted bytes; where the count can't be right, all up to Mail's own property list at the end."""
    end = start + count
    tail = data[end:end + 64].lstrip() if count >= 0 else b"?"
    if count < 0 or not cut and (end > len(data) or tail and not tail.startswith((b"<?xml", b"<!DOCTYPE", b"<plist"))):
        plist = data.rfind(b"<?xml version", max(start, len(data) - 65536))
        end = plist if plist >= 0 and data.find(b"<plist", plist) >= 0 else len(data)
    return b"\n" + data[start:end]
