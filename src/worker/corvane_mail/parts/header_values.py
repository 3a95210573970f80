"""Values of header fields: encoded words, parameters, file names."""

import binascii
import re
from functools import lru_cache

from ..charsets.decoding import decode_text
from ..charsets.label_codecs import codec_for
from ..charsets.unicode_text import nfc
from .transfer import decode_base64


def decode_words(value, hint=""):
    """Text of a field's value with encoded words (RFC 2047), in quotes or broken inside characters as well."""
    if b"=?" not in value:
        return decode_text(value, b"", hint)
    payload = rb"(.{0,998}?)" if value.count(b"=?") <= 64 else rb"([^?]*)"
    texts, label, pending, end = [], b"", b"", 0
    for word in re.finditer(rb"=\?([^?\s]{1,80})\?\s*([BbQq])\s*\?" + payload + rb"(?:\?=|$)", value, re.S):
        between, charset = value[end:word.start()], word.group(1).lower()
        apart = not end or between.strip()
        if apart or charset != label:
            texts += decode_text(pending, label, hint), decode_text(between, b"", hint) if apart else ""
            label, pending = charset, b""
        text = word.group(3)
        pending += decode_base64(text) if word.group(2) in b"Bb" else binascii.a2b_qp(text, header=True)
        end = word.end()
    return "".join(texts) + decode_text(pending, label, hint) + decode_text(value[end:], b"", hint)


def declared_in_words(fields):
    """The codec of the encoded words in a message's subject or sender, a hint for what declares none; else ""."""
    for name in (b"subject", b"from"):
        word = re.search(rb"=\?([^?\s]{1,40})\?[BbQq]\?", fields.get(name, b""))
        if word and codec_for(word.group(1)) not in ("", "utf-8"):
            return codec_for(word.group(1))
    return ""


def parameter_items(value):
    """(name, value) pairs behind the first ";" of a field's value; quotes may be missing or stand inside."""
    at = value.find(b";")
    for _ in range(200):
        equals = value.find(b"=", at)
        if at < 0 or equals < 0:
            return
        name = value[at + 1:equals].rpartition(b";")[2].strip().lower()
        start = re.compile(rb"\s*").match(value, equals + 1).end()
        if value[start:start + 1] == b'"':
            end = closing_quote(value, start + 1)
            yield name, re.sub(rb'\\(["\\])', rb"\1", value[start + 1:end])
            at = value.find(b";", end)
        else:
            at = value.find(b";", start)
            yield name, (value[start:at] if at >= 0 else value[start:]).strip(b" \t'\"")


def closing_quote(value, start):
    first = at = value.find(b'"', start)
    while at >= 0:
        escaped = value[at - 1:at] == b"\\" and value[at - 2:at] != b"\\\\"
        if not escaped and re.compile(rb"\s*(?:;|$)").match(value, at + 1):
            return at
        at = value.find(b'"', at + 1)
    if first >= 0:
        return first
    semicolon = value.find(b";", start)
    return len(value) if semicolon < 0 else semicolon


def unpercent(value):
    return re.sub(rb"%([0-9A-Fa-f]{2})", lambda match: bytes((int(match.group(1), 16),)), value)


@lru_cache(maxsize=512)
def parse_field(value):
    """Main value in lower case and its parameters: name to (bytes, charset label or None).

    RFC 2231 pieces are joined in their order; an extended parameter wins over the plain one.
    """
    value = re.sub(rb"^(\s*[^\s;=]+)[ \t]+(?=[\w*-]+=)", rb"\1;", value)
    main = value.partition(b";")[0].strip(b" \t\r\n\"'").lower()
    parameters, pieces = {}, {}
    for name, text in parameter_items(value):
        base, star, rest = name.partition(b"*")
        if not star:
            parameters.setdefault(base, (text, None))
        else:
            index = rest.rstrip(b"*")
            order = int(index) if index.isdigit() and len(index) < 6 else 0
            pieces.setdefault(base, {}).setdefault(order, (text, rest.endswith(b"*") or not rest))
    parameters.update((base, join_pieces(parts)) for base, parts in pieces.items())
    return main, parameters


def join_pieces(parts):
    label, joined, coded = None, b"", b""
    for order in sorted(parts):
        text, extended = parts[order]
        if extended and not joined and not coded and text.count(b"'") >= 2:
            label, _, text = text.split(b"'", 2)
        if extended:
            # Some cut an escape in two.
            coded += text
        else:
            joined, coded = joined + unpercent(coded) + text, b""
    return joined + unpercent(coded), label


def parameter(parameters, name):
    return parameters[name][0] if name in parameters else b""


def decode_name(value, label, hint):
    """A file name as its sender saw it: RFC 2231, RFC 2047 inside quotes, bare bytes; never a path."""
    tagged = re.match(rb"([A-Za-z][\w.-]{1,30})'[A-Za-z-]{0,10}'(?=.*%[0-9A-Fa-f]{2})", value) if not label else None
    if tagged:
        value, label = unpercent(value[tagged.end():]), tagged.group(1)
    name = decode_text(value, label, hint) if label and b"=?" not in value else decode_words(value, hint)
    name = re.sub("[\u00ad\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069\ufeff]", "", name)
    name = re.sub(r"[\x00-\x1f\x7f-\x9f]+|\s", " ", name).strip(' "')
    if re.match(r"[A-Za-z]:[\\/¥]|[\\/]|\.\.?[\\/]", name):
        name = re.split(r"[\\/¥]", name)[-1]
    return nfc(name)
