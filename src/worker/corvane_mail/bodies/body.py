"""The readable text of a message."""

from ..charsets.unicode_text import nfc
from ..limits import CLOCK, MAX_SEALED
from ..parts.header_values import decode_words, declared_in_words, parameter
from ..parts.part import HTML_TYPES
from ..parts.structure import Scanner
from .alternatives import html_source, is_better, may_be_poorer, repeats
from .leaf_text import html_leaf, plain_leaf

CAP_NOTICE = "（邮件结构超出上限，其余部分未解析）"
ENCRYPTED_NOTICE = "（加密邮件，无法显示正文）"
NO_BODY_TYPES = frozenset("text/vcard text/x-vcard text/directory text/css text/javascript text/x-amp-html text/xml text/csv"
                          " text/x-moz-deleted message/external-body".split())
CALENDAR_TYPES = ("text/calendar", "application/ics")
RTF_TYPES = ("text/rtf", "application/rtf", "application/x-rtf")


class Body:
    """Puts together the text of a message's parts; html tells whether any of it came from HTML.

    spare are the parts that speak only where nothing else does: invitations, packed messages, texts that
    came as attachments without a name or as the whole message.
    """

    def __init__(self, root):
        self.root, self.hint = root, declared_in_words(root.fields)
        self.html = self.encrypted = False
        self.spare, self.opened = [], 0

    def text(self, part):
        if part.parts is None:
            return self._leaf(part)
        if part.is_message:
            return self._message(part.parts[0])
        if part.kind == "multipart/alternative":
            return self._alternative(part.parts)
        if part.kind == "multipart/encrypted":
            self.encrypted = True
        return self._joined(shown_parts(part) if part.kind == "multipart/related" else part.parts)

    def _joined(self, parts):
        texts = []
        for part in parts:
            CLOCK.check()
            text = self.text(part)
            if text.strip() and not (texts and repeats(text, texts[-1])):
                texts.append(text)
        return "\n\n".join(texts)

    def _message(self, inner):
        """A forwarded message: who wrote what to whom and when, then its body."""
        labels = ((b"from", "发件人："), (b"subject", "主题："), (b"date", "日期："), (b"to", "收件人："))
        head = "\n".join(label + " ".join(decode_words(inner.fields[name], self.hint).split())
                         for name, label in labels if inner.fields.get(name))
        return "\n\n".join(filter(None, (head, self.text(inner))))

    def _alternative(self, parts):
        """The reading a person would choose: plain text, unless it is a stub or poorer than the rich one."""
        plain = self._joined(part for part in parts if part.kind in ("text/plain", *CALENDAR_TYPES))
        rich = [part for part in parts if part.kind not in ("text/plain", *CALENDAR_TYPES)]
        return self._richer(plain, rich) if rich and may_be_poorer(plain, html_source(rich[-1])) else plain

    def _richer(self, plain, rich):
        was_html = self.html
        for part in reversed(rich):
            text = self.text(part)
            if text.strip() and is_better(text, plain):
                return text
            self.html = was_html
        return plain

    def _leaf(self, part):
        kind = part.kind
        if (kind == "text/plain" or kind in HTML_TYPES) and not part.is_attachment:
            return self._shown(part)
        if part.is_sealed:
            return self._sealed(part)
        if part.is_attachment or kind in CALENDAR_TYPES or kind in RTF_TYPES or part.is_winmail:
            self.spare.append(part)
            return ""
        if not kind.startswith(("text/", "message/")) or kind in NO_BODY_TYPES:
            return ""
        return self._shown(part)

    def _shown(self, part):
        if part.kind in HTML_TYPES:
            text, html = html_leaf(part.payload(text=True), part.charset, self.hint), True
        else:
            text, html = plain_leaf(part, self.hint)
        self.html |= html
        return text

    def _sealed(self, part):
        from ..packed.sealed import unsealed
        self.opened += 1
        inner = unsealed(part) if self.opened <= MAX_SEALED else None
        self.encrypted |= inner is None
        return self.text(inner) if inner else ""

    def spare_text(self):
        for part in self.spare:
            text = self._spare_part(part)
            if text.strip():
                return text
        return ENCRYPTED_NOTICE if self.encrypted else ""

    def _spare_part(self, part):
        if part.is_winmail:
            from ..packed.tnef import Tnef
            text, self.html = Tnef(part.payload()).text()
            return text
        if part.kind in CALENDAR_TYPES or part.name_ends(b".ics"):
            from .calendar_text import calendar_text
            return calendar_text(plain_leaf(part, self.hint)[0])
        if part.is_named and part is not self.root:
            return ""
        if part.kind in RTF_TYPES:
            from ..packed.rtf_text import rtf_text
            return rtf_text(part.payload(text=True)[:1 << 20])
        return self._shown(part) if part.kind == "text/plain" or part.kind in HTML_TYPES else ""


def shown_parts(related):
    """Of a related group its root, and what isn't shown inside it by an identifier."""
    start = parameter(related.parameters, b"start").strip(b"<> ")
    for part in related.parts:
        if start and part.fields.get(b"content-id", b"").strip(b"<> ") == start:
            return [part]
    return [part for i, part in enumerate(related.parts) if not i or b"content-id" not in part.fields]


def body_text(data):
    """(text, whether from HTML) of a message; data begins with a line feed."""
    scanner = Scanner(data)
    body = Body(scanner.run())
    text = body.text(body.root)
    if scanner.odd and not text.strip():
        from ..parts.full_parser import full_parse
        body = Body(full_parse(data))
        text = body.text(body.root)
    if not text.strip():
        text = body.spare_text()
    text = nfc(text).strip("\n")
    if scanner.capped:
        text = text.strip() + "\n\n" + CAP_NOTICE
    return text if text.strip() else "", body.html
