"""The attachments of a message."""

import re

from ..charsets.label_codecs import codec_for
from ..charsets.unicode_text import nfc, without_hidden
from ..limits import CLOCK, MAX_SEALED
from ..parts.header_values import decode_name, decode_words, declared_in_words
from ..parts.part import HTML_TYPES, SEALED_TYPES, WINMAIL_TYPES

OFFICE = "application/vnd.openxmlformats-officedocument."
EXTENSIONS = {"application/pdf": ".pdf", "application/zip": ".zip", "application/msword": ".doc", "image/jpeg": ".jpg",
              "image/png": ".png", "image/gif": ".gif", "image/tiff": ".tif", "image/bmp": ".bmp", "image/webp": ".webp",
              "image/heic": ".heic", "text/plain": ".txt", "text/html": ".html", "text/calendar": ".ics", "text/csv": ".csv",
              "text/rtf": ".rtf", "application/rtf": ".rtf", "application/vnd.ms-excel": ".xls",
              "application/vnd.ms-powerpoint": ".ppt", OFFICE + "wordprocessingml.document": ".docx",
              OFFICE + "spreadsheetml.sheet": ".xlsx", OFFICE + "presentationml.presentation": ".pptx",
              "audio/mpeg": ".mp3", "text/vcard": ".vcf", "text/x-vcard": ".vcf", "video/mp4": ".mp4",
              "application/ics": ".ics", "text/xml": ".xml",
              "application/x-zip-compressed": ".zip", "application/json": ".json", "image/svg+xml": ".svg"}
FIXED_NAMES = {**dict.fromkeys(SEALED_TYPES, "smime.p7m"), **dict.fromkeys(WINMAIL_TYPES, "winmail.dat")}
SILENT_TYPES = ("application/pgp-signature", "application/pgp-encrypted", "application/pkcs7-signature",
                "application/x-pkcs7-signature", "application/applefile")


class Attachment:
    """A named file inside a message, and how to get its bytes: those of its part, or what contents() gives."""

    __slots__ = ("name", "kind", "part", "contents")

    def __init__(self, name, kind, part, contents=None):
        self.name, self.kind, self.part, self.contents = name, kind, part, contents

    def data(self):
        return self.contents() if self.contents else self.part.payload()

    def is_cut(self, cut):
        return cut and not self.contents and self.part.end == len(self.part.data)

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
    """All attachments in document order, those of forwarded, signed and packed messages included."""
    return Collector(root).found


class Collector:
    """Walks the parts of a message once, in their order."""

    def __init__(self, root):
        self.found, self.body_seen, self.opened = [], False, 0
        self.hint = codec_for(first_charset(root)) or declared_in_words(root.fields)
        stack = [(root, "")]
        while stack:
            part, group = stack.pop()
            CLOCK.check()
            self._add(part, group)
            stack.extend((child, part.kind) for child in reversed(part.parts or self._sealed_parts(part)))

    def _add(self, part, group):
        if part.kind.startswith("multipart/") or group == "multipart/appledouble" and part.kind == "application/applefile":
            return
        if self._is_body(part, group):
            return
        name = part_name(part, self.hint)
        if name or is_nameless_attachment(part, group):
            self.found.append(Attachment(name or name_for(part, len(self.found) + 1), part.kind, part))
        if part.is_winmail:
            self._add_packed(part)

    def _is_body(self, part, group):
        """Whether part is the text of the message; notes the files that stand inside any plain text."""
        if part.is_attachment or part.parts or part.kind != "text/plain" and part.kind not in HTML_TYPES:
            return False
        if part.kind == "text/plain":
            data = part.payload(text=True)
            self._add_inline(part, data)
            if part.is_binary(data):
                return False
        first, self.body_seen = not self.body_seen, True
        return (first or group == "multipart/alternative") and b"filename" not in part.named

    def _add_inline(self, part, data):
        if b"begin " not in data:
            return
        from ..packed.inline_files import inline_files
        for file in inline_files(data):
            name = decode_name(file.name, None, self.hint) or "附件"
            self.found.append(Attachment(name, "application/octet-stream", part, file.data))

    def _add_packed(self, part):
        from ..packed.tnef import Tnef
        for name, kind, data in Tnef(part.payload()).files:
            name = decode_name(name.encode("utf-8", "replace"), b"utf-8", "") or numbered(kind, len(self.found) + 1)
            self.found.append(Attachment(name, kind, part, lambda data=data: data))

    def _sealed_parts(self, part):
        if not part.is_sealed or self.opened >= MAX_SEALED:
            return ()
        from ..packed.sealed import unsealed
        self.opened += 1
        inner = unsealed(part, whole=True)
        return (inner,) if inner else ()


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
    """A name for a part that has none: a subject, a description that reads like a file name, or a number."""
    if part.is_message:
        subject = decode_words(part.parts[0].fields.get(b"subject", b"")) if part.parts else ""
        return (re.sub(r"[\\/:]+", "-", without_hidden(nfc(subject))).strip()[:80] or "邮件") + ".eml"
    if part.kind in FIXED_NAMES:
        return FIXED_NAMES[part.kind]
    described = decode_name(part.fields.get(b"content-description", b"")[:500], None, "")
    if re.fullmatch(r"[^\\/:]{1,120}\.[A-Za-z0-9]{2,5}", described):
        return described
    return numbered(part.kind, number)


def numbered(kind, number):
    return "附件%d%s" % (number, EXTENSIONS.get(kind, ""))
