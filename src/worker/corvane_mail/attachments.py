"""The attachments of a message."""

import re

from .charset_codecs import codec_for
from .header_values import decode_name, decode_words, unpercent
from .limits import CLOCK
from .unicode_text import nfc
from .uuencode import decode_uu, uu_files

EXTENSIONS = {"application/pdf": ".pdf", "application/zip": ".zip", "application/msword": ".doc", "image/jpeg": ".jpg",
              "image/png": ".png", "image/gif": ".gif", "image/tiff": ".tif", "text/plain": ".txt", "text/html": ".html",
              "text/calendar": ".ics", "text/csv": ".csv", "text/rtf": ".rtf", "application/rtf": ".rtf",
              "application/vnd.ms-excel": ".xls", "application/vnd.ms-powerpoint": ".ppt", "audio/mpeg": ".mp3",
              "text/vcard": ".vcf", "text/x-vcard": ".vcf", "video/mp4": ".mp4"}
FIXED_NAMES = {"application/pkcs7-mime": "smime.p7m", "application/x-pkcs7-mime": "smime.p7m",
               "application/ms-tnef": "winmail.dat", "application/vnd.ms-tnef": "winmail.dat"}
SILENT_TYPES = ("application/pgp-signature", "application/pgp-encrypted", "application/pkcs7-signature",
                "application/x-pkcs7-signature", "application/applefile")


class Attachment:
    """A named file inside a message, and how to get its bytes."""

    __slots__ = ("name", "kind", "part", "lines")

    def __init__(self, name, kind, part, lines=None):
        self.name, self.kind, self.part, self.lines = name, kind, part, lines

    def data(self):
        return self.part.payload() if self.lines is None else decode_uu(self.lines)

    def is_cut(self, cut):
        return cut and self.lines is None and self.part.end == len(self.part.data)

    def size(self, cut, file_size):
        """Decoded bytes; an estimate where the file was read in part or Mail keeps the bytes elsewhere."""
        part = self.part
        elsewhere = part.fields.get(b"x-apple-content-length", b"")
        if elsewhere.isdigit() and part.end - part.start < 16:
            return int(elsewhere[:15])
        if self.is_cut(cut):
            rest = max(file_size - part.start, 0)
            return rest * 57 // 77 if part.encoding == b"base64" else rest
        return len(self.data())


def attachments_of(root):
    """All attachments in document order, those of forwarded messages included."""
    found, body_seen, stack = [], False, [(root, "")]
    hint = codec_for(first_charset(root))
    while stack:
        part, group = stack.pop()
        CLOCK.check()
        stack.extend((child, part.kind) for child in reversed(part.parts or ()))
        is_text = part.kind in ("text/plain", "text/html") and not part.is_attachment
        if is_text and part.kind == "text/plain":
            found.extend(uu_attachments(part, hint))
        is_body, body_seen = is_text and not body_seen and b"filename" not in part.named, body_seen or is_text
        if is_body or part.kind.startswith("multipart/"):
            continue
        name = part_name(part, hint)
        if name or is_nameless_attachment(part, group):
            found.append(Attachment(name or name_for(part, len(found) + 1), part.kind, part))
    return found


def first_charset(root):
    stack = [root]
    while stack:
        part = stack.pop()
        if part.kind.startswith("text/") and part.charset:
            return part.charset
        stack.extend(reversed(part.parts or ()))
    return b""


def part_name(part, hint):
    written = [(group[key], hint) for group, key in ((part.named, b"filename"), (part.parameters, b"name"),
                                                      (part.named, b"name"), (part.parameters, b"filename")) if key in group]
    names = [name for name in (decode_name(*value, hint) for value, hint in written) if name]
    return next((name for name in names if "\ufffd" not in name), names[0] if names else "")


def is_nameless_attachment(part, group):
    if part.is_attachment:
        return True
    if part.kind.startswith(("text/", "message/")) or part.kind in SILENT_TYPES or part.end <= part.start:
        return False
    return not (part.kind.startswith("image/") and (group == "multipart/related" or b"content-id" in part.fields))


def name_for(part, number):
    if part.is_message:
        subject = decode_words(part.parts[0].fields.get(b"subject", b"")) if part.parts else ""
        return (re.sub(r"[\\/:\x00-\x1f]+", "-", nfc(subject)).strip()[:80] or "邮件") + ".eml"
    return FIXED_NAMES.get(part.kind) or "附件" + str(number) + EXTENSIONS.get(part.kind, "")


def uu_attachments(part, hint):
    data = part.payload(text=True)
    for _, _, name, lines in uu_files(data) if b"begin " in data else ():
        yield Attachment(decode_name(name, None, hint) or "附件", "application/octet-stream", part, lines)


def cleaned(name):
    """A name as the program's own cleaning of attachment names leaves it, near enough to compare."""
    name = name.strip("\"' \t\r\n")
    head, quotes, rest = name.partition("''")
    if quotes:
        known = re.fullmatch(r"(?i)utf-?8|us-ascii|gbk|gb2312|big5|iso-.*|windows-.*", head)
        name = unpercent((rest if known else name).encode("utf-8", "replace")).decode("utf-8", "replace")
    if "=?" in name:
        name = decode_words(name.encode("utf-8", "replace")).replace("_", " ")
    bracket = re.match(r"<[^>]*@[^>]*>(.*)", name, re.S)
    name = (bracket.group(1) if bracket else name).replace("\\", "").strip()
    return ".".join(filter(None, (piece.strip() for piece in name.split(".")))) or name


def squeezed(name):
    return "".join(c for c in nfc(cleaned(name)).casefold() if c.isalnum())


def find_attachment(attachments, wanted):
    """The attachment of that name; the likeness asked for goes from the very name down to letters and digits."""
    for form in (str, nfc, lambda name: nfc(cleaned(name)), squeezed):
        key = form(wanted)
        for attachment in attachments:
            if key and form(attachment.name) == key:
                return attachment
    return None
