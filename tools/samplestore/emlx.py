"""Forms of a stored message: count line, message, Mail's property list, and their damages."""

from __future__ import annotations

from typing import Callable, NamedTuple

PLIST = """<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" \
"http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
\t<key>conversation-id</key>
\t<integer>{conversation}</integer>
\t<key>date-last-viewed</key>
\t<integer>0</integer>
\t<key>date-received</key>
\t<integer>{received}</integer>
\t<key>flags</key>
\t<integer>8590195713</integer>
\t<key>remote-id</key>
\t<string>{remote}</string>
</dict>
</plist>
"""


class Stored(NamedTuple):
    """The file's bytes, and the message that a reader must cut out of it; None: it can't be."""

    data: bytes
    message: bytes | None


def _whole(message: bytes, plist: bytes) -> Stored:
    return Stored(f"{len(message):<10}\n".encode() + message + plist, message)


def _narrow(message: bytes, plist: bytes) -> Stored:
    return Stored(f"{len(message)}\n".encode() + message + plist, message)


def _crlf_message(message: bytes, plist: bytes) -> Stored:
    return _whole(message.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n"), plist)


def _crlf_count(message: bytes, plist: bytes) -> Stored:
    return Stored(f"{len(message)}\r\n".encode() + message + plist, message)


def _too_large(message: bytes, plist: bytes) -> Stored:
    rest = message + plist
    return Stored(f"{len(rest) + 5000}\n".encode() + rest, rest)


def _cut_short(message: bytes, plist: bytes) -> Stored:
    half = message[:len(message) // 2]
    return Stored(f"{len(message)}\n".encode() + half, half)


def _headers_only(message: bytes, plist: bytes) -> Stored:
    return _narrow(message.partition(b"\n\n")[0] + b"\n", plist)


def _count(text: str) -> Callable[[bytes, bytes], Stored]:
    return lambda message, plist: Stored(text.encode() + b"\n" + message + plist, None)


FORMS: dict[str, Callable[[bytes, bytes], Stored]] = {
    "whole": _whole,
    "narrow": _narrow,
    "crlf-message": _crlf_message,
    "crlf-count": _crlf_count,
    "too-large": _too_large,
    "cut-short": _cut_short,
    "headers-only": _headers_only,
    "zero-count": lambda message, plist: Stored(b"0\n" + message + plist, b""),
    "negative": _count("-120"),
    "letters": _count("12ab34"),
    "overflow": _count("99999999999999999999999"),
    "not-utf8": lambda message, plist: Stored(b"\xff\xfe12\n" + message + plist, None),
    "no-line-feed": lambda message, plist: Stored(b"1234 " + message.replace(b"\n", b" "), None),
    "empty": lambda message, plist: Stored(b"", None),
}
