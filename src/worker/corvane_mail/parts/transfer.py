"""Content transfer encodings as mail carries them."""

import binascii
import re

BASE64_DIGITS = b"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"
BASE64_NOISE = bytes(set(range(256)) - set(BASE64_DIGITS + b"-_"))
BASE64_SIGNS = bytes.maketrans(b"-_", b"+/")
ALL_BASE64 = rb"\s*(?:[A-Za-z0-9+/]{60,76}\r?\n)+[A-Za-z0-9+/]{0,76}={0,2}\s*"
ESCAPED_PAIR = rb"=[89A-F][0-9A-F]=[89A-F][0-9A-F]"
NO_ESCAPE = rb"=(?![0-9A-F]{2}|[ \t]*\r?\n|$)"
NO_TEXT = bytes(set(range(32)) - {9, 10, 13, 27})


def decode_base64(raw):
    """Bytes of base64 as mail carries it: noise skipped, padding missing, more base64 (but no text) behind padding."""
    padding = raw.find(b"=")
    if padding < 0 or not raw[padding:].strip(b"=\r\n\t "):
        try:
            return binascii.a2b_base64(raw)
        except binascii.Error:
            pass
    runs = re.split(rb"=[=\s]*", raw)
    more = next((i for i, run in enumerate(runs) if i and run.translate(None, BASE64_DIGITS + b"\r\n\t")), len(runs))
    return b"".join(map(decode_base64_run, runs[:more]))


def decode_base64_run(run):
    run = run.translate(BASE64_SIGNS, BASE64_NOISE)
    run = run[:-1] if len(run) % 4 == 1 else run
    return binascii.a2b_base64(run + b"=" * (-len(run) % 4))


def decode_base64_text(raw):
    """A text body in base64; what a mailing list wrote behind it, or all of it where the label lies, is text."""
    if raw.count(b"=") > 8 and is_quoted_printable(raw):
        return decode_quoted_printable(raw)
    lines = re.match(rb"(?:[A-Za-z0-9+/]+=*[ \t]*\r*\n|[ \t\r]*\n)*", raw).end()
    rest = raw[lines:].strip()
    if len(rest.translate(None, BASE64_DIGITS + b"=\r\n\t")) * 20 <= len(rest) and not rest.startswith(b"--"):
        data = decode_base64(raw)
        uneven = len(raw) < 100 and len(b"".join(raw.split())) % 4 and b"=" not in raw
        return raw if uneven and data.translate(None, NO_TEXT) != data else data
    return decode_base64(raw[:lines]) + b"\n" + rest if lines > 40 else raw


def decode_quoted_printable(raw):
    if b"= " in raw or b"=\t" in raw:
        raw = re.sub(rb"=[ \t]+(\r?\n)", rb"=\1", raw)
    return binascii.a2b_qp(raw)


def hidden_base64(raw):
    """The text in a body that is nothing but base64, whatever its field says; None for anything else."""
    if b" " in raw[:80] or not re.fullmatch(ALL_BASE64, raw):
        return None
    data = decode_base64(raw)
    return data if data.translate(None, NO_TEXT) == data else None


def is_quoted_printable(raw):
    """Whether a body that isn't told to be quoted-printable can be nothing else."""
    hint = b"=E" in raw or b"=C" in raw or b"=D" in raw or b"=B" in raw
    return hint and len(re.findall(ESCAPED_PAIR, raw[:65536])) >= 2 and raw.isascii() and not re.search(NO_ESCAPE, raw)
