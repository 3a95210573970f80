"""Content transfer encodings as mail carries them."""

import binascii
import re

BASE64_DIGITS = b"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"
BASE64_NOISE = bytes(set(range(256)) - set(BASE64_DIGITS + b"-_"))
BASE64_SIGNS = bytes.maketrans(b"-_", b"+/")


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
    lines = re.match(rb"(?:[A-Za-z0-9+/]+=*[ \t]*\r*\n|[ \t\r]*\n)*", raw).end()
    rest = raw[lines:].strip()
    if len(rest.translate(None, BASE64_DIGITS + b"=\r\n\t")) * 20 <= len(rest) and not rest.startswith(b"--"):
        return decode_base64(raw)
    return decode_base64(raw[:lines]) + b"\n" + rest if lines > 40 else raw


def decode_quoted_printable(raw):
    if b"= " in raw or b"=\t" in raw:
        raw = re.sub(rb"=[ \t]+(\r?\n)", rb"=\1", raw)
    return binascii.a2b_qp(raw)
