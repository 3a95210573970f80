"""Messages as bytes: header fields (RFC 2047, RFC 2231), bodies and multiparts (RFC 2045)."""

from __future__ import annotations

import base64
import binascii
import functools
import re
import time
import urllib.parse

from .model import Attachment, Charset, Mail, Person
from .wording import fitting

DAYS = ("Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun")
MONTHS = ("Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec")
PLAIN_HEADER = re.compile(r"[\x20-\x7e]*\Z")
PLAIN_PHRASE = re.compile(r"[A-Za-z0-9!#$%&'*+/=?^_`{|}~ -]+\Z")
# A continued parameter may not be cut inside "%E6".
PERCENT_PIECE = re.compile(r"(?:%[0-9A-F]{2}|[^%]){1,14}")
# RFC 2047 allows an encoded word 75 characters; this many characters of text always stay below.
WORD_LENGTH = {"B": 11, "Q": 5}

Part = tuple[bytes, bytes]


def encoded_words(text: str, charset: Charset) -> str:
    charset = fitting(charset, text)
    step = WORD_LENGTH[charset.header_encoding]
    pieces = (text[i:i + step].encode(charset.codec) for i in range(0, len(text), step))
    encode = _b_word if charset.header_encoding == "B" else _q_word
    return "\n ".join(f"=?{charset.label}?{charset.header_encoding}?{encode(piece)}?="
                      for piece in pieces)


def _b_word(data: bytes) -> str:
    return base64.b64encode(data).decode()


def _q_word(data: bytes) -> str:
    return "".join("_" if byte == 32 else chr(byte) if chr(byte).isalnum() and byte < 128
                   else f"={byte:02X}" for byte in data)


def header_text(text: str, charset: Charset) -> str:
    return text if PLAIN_HEADER.match(text) else encoded_words(text, charset)


def address(person: Person, charset: Charset) -> str:
    if not person.name:
        return person.address
    if not PLAIN_HEADER.match(person.name):
        return f"{encoded_words(person.name, charset)} <{person.address}>"
    if PLAIN_PHRASE.match(person.name):
        return f"{person.name} <{person.address}>"
    escaped = person.name.replace("\\", "\\\\").replace('"', '\\"')
    return f'"{escaped}" <{person.address}>'


def addresses(people: list[Person], charset: Charset) -> str:
    return ",\n ".join(address(person, charset) for person in people)


def date_text(when: int, zone: int) -> str:
    # Not strftime: its names follow the locale.
    t = time.gmtime(when + zone)
    sign, minutes = ("-" if zone < 0 else "+"), abs(zone) // 60
    return (f"{DAYS[t.tm_wday]}, {t.tm_mday} {MONTHS[t.tm_mon - 1]} {t.tm_year} {t.tm_hour:02}:"
            f"{t.tm_min:02}:{t.tm_sec:02} {sign}{minutes // 60:02}{minutes % 60:02}")


@functools.lru_cache(maxsize=256)
def base64_lines(data: bytes) -> bytes:
    return base64.encodebytes(data)


def encoded_body(text: str, charset: Charset) -> bytes:
    data = text.encode(charset.codec)
    if charset.transfer == "base64":
        return base64.encodebytes(data.replace(b"\n", b"\r\n"))
    if charset.transfer == "quoted-printable":
        return binascii.b2a_qp(data, istext=True)
    return data


def text_part(subtype: str, text: str, charset: Charset, parameters: str = "") -> Part:
    charset = fitting(charset, text)
    head = (f"Content-Type: text/{subtype}; charset={charset.label}{parameters}\n"
            f"Content-Transfer-Encoding: {charset.transfer}\n")
    return head.encode(), encoded_body(text, charset)


def multipart(subtype: str, parts: list[Part], boundary: str) -> Part:
    head = f'Content-Type: multipart/{subtype};\n\tboundary="{boundary}"\n'.encode()
    marker = b"\n--" + boundary.encode()
    pieces = [piece for part in parts for piece in (marker, b"\n", part[0], b"\n", part[1])]
    return head, b"".join([*pieces, marker, b"--\n"])


def flowed(text: str) -> str:
    """RFC 3676: long paragraphs in lines that end with a blank, odd beginnings stuffed with one."""
    return "\n".join(_flowed_line(line) for line in text.split("\n"))


def _flowed_line(line: str) -> str:
    out: list[str] = []
    while len(line) > 72 and (cut := line.rfind(" ", 0, 72)) > 0:
        out.append(line[:cut + 1])
        line = line[cut + 1:]
    out.append(line)
    return "\n".join(" " + piece if piece.startswith((" ", ">", "From ")) else piece
                     for piece in out)


def name_parameter(parameter: str, name: str, style: str, charset: Charset) -> bytes:
    """One parameter that holds a file name, in one of the ways that mail clients write it."""
    if style == "gbk-bytes":
        return f'\n\t{parameter}="'.encode() + name.encode("gb18030") + b'"'
    if style == "raw" or name.isascii() and style != "rfc2231":
        escaped = name.replace("\\", "\\\\").replace('"', '\\"')
        return f'\n\t{parameter}="{escaped}"'.encode()
    if style == "rfc2047":
        return f'\n\t{parameter}="{encoded_words(name, charset)}"'.encode()
    percent = urllib.parse.quote(name, safe="")
    if style == "rfc2231" or parameter == "name":
        return f"\n\t{parameter}*=UTF-8''{percent}".encode()
    return continued_parameter(parameter, percent)


def continued_parameter(parameter: str, percent: str) -> bytes:
    pieces = PERCENT_PIECE.findall(percent)
    lines = [f"\n\t{parameter}*{i}*={piece}" for i, piece in enumerate(pieces)]
    lines[0] = f"\n\t{parameter}*0*=UTF-8''{pieces[0]}"
    return ";".join(lines).encode()


def attachment_part(item: Attachment, charset: Charset, token: str, stub: bool) -> Part:
    head = f"Content-Type: {item.mime};".encode()
    head += name_parameter("name", item.name, item.style, charset)
    head += b"\nContent-Disposition: " + (b"inline;" if item.inline else b"attachment;")
    head += name_parameter("filename", item.name, item.style, charset)
    head += b"\nContent-Transfer-Encoding: base64\n"
    if item.inline:
        head += f"Content-Id: <{content_id(item, token)}>\n".encode()
    if stub:
        return head + f"X-Apple-Content-Length: {len(item.data)}\n".encode(), b""
    return head, base64_lines(item.data)


def content_id(item: Attachment, token: str) -> str:
    return f"{item.name}@{token}"


def readable_part(mail: Mail) -> Part:
    parameters = "; format=flowed" if mail.flowed else ""
    plain = text_part("plain", flowed(mail.text) if mail.flowed else mail.text, mail.charset,
                      parameters)
    if mail.html is None:
        return plain
    return multipart("alternative", [plain, text_part("html", mail.html, mail.charset)],
                     f"Apple-Mail=_{mail.token}-3")


def content(mail: Mail, stub: bool = False) -> Part:
    """The content headers and the body; with `stub` the attachments have lost their bodies."""
    if mail.part:
        return mail.part
    root = readable_part(mail)
    for inline, subtype, number in ((True, "related", 2), (False, "mixed", 1)):
        parts = [attachment_part(item, mail.charset, mail.token, stub)
                 for item in mail.attachments if item.inline is inline]
        if not inline and mail.forwarded:
            parts.append((b"Content-Type: message/rfc822\nContent-Disposition: inline\n",
                          message(mail.forwarded)))
        if parts:
            root = multipart(subtype, [root, *parts], f"Apple-Mail=_{mail.token}-{number}")
    return root


def header_fields(mail: Mail, extra: tuple[tuple[str, str], ...]) -> list[tuple[str, str]]:
    charset = mail.charset
    subject = mail.prefix + mail.subject
    fields = [*extra, *mail.headers]
    if mail.sender:
        fields.append(("From", address(mail.sender, charset)))
    fields += [(name, addresses(people, charset))
               for name, people in (("To", mail.to), ("Cc", mail.cc)) if people]
    fields += [("Subject", header_text(subject, charset)),
               ("Date", date_text(mail.date, mail.zone))]
    if mail.message_id:
        fields.append(("Message-Id", f"<{mail.message_id}>"))
    if mail.references:
        fields.append(("References", "\n ".join(f"<{item}>" for item in mail.references)))
        fields.append(("In-Reply-To", f"<{mail.references[-1]}>"))
    fields.append(("MIME-Version", "1.0"))
    return fields


def message(mail: Mail, extra: tuple[tuple[str, str], ...] = (), part: Part | None = None) -> bytes:
    """The whole message with "\\n" line ends. `extra` fields come first; `part` is its content."""
    head, body = part or content(mail)
    named = {name.lower() for name, _ in (*extra, *mail.headers)}
    fields = header_fields(mail, extra)
    kept = [pair for i, pair in enumerate(fields)
            if i < len(extra) + len(mail.headers) or pair[0].lower() not in named]
    lines = "".join(f"{name}: {value}\n" for name, value in kept)
    return lines.encode(errors="surrogateescape") + head + b"\n" + body
