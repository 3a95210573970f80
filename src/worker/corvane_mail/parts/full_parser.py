"""The parts of a message as the standard library sees them."""

import re
from email import message_from_bytes

from ..limits import CLOCK, MAX_DEPTH, MAX_FIELD
from .part import DECODED, ENCODED, Part


def full_parse(data):
    """The parts as the standard library's parser sees them, for mail that the scanner finds odd.

    Broken mail may find faults of that parser; it has no parts then, as if it read nothing.
    """
    try:
        return part_of(message_from_bytes(data[1:]), 0)
    except Exception:
        return Part(b"")


def part_of(message, depth):
    CLOCK.check()
    fields = {}
    for name, value in message.raw_items():
        name = name.lower().encode("utf-8", "surrogateescape")
        value = re.sub(r"\r*\n[ \t]+", " ", value).strip().encode("utf-8", "surrogateescape")
        fields.setdefault(name, value[:MAX_FIELD])
    part = Part(b"", message.get_default_type())
    part.set_fields(fields)
    part.encoding = DECODED if part.encoding in ENCODED else b""
    body = message.get_payload() if message.is_multipart() else None
    if part.kind == "message/delivery-status" and isinstance(body, list):
        part.data = b"".join(child.as_bytes() for child in body)
    elif isinstance(body, list):
        part.parts = [part_of(child, depth + 1) for child in body] if depth < MAX_DEPTH else None
    else:
        part.data = message.get_payload(decode=True) or b""
    part.end = len(part.data)
    return part
