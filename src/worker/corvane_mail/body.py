"""The readable text of a message."""

import re

from .charset_codecs import codec_for
from .charsets import decode_text
from .header_values import decode_words, parameter
from .html_layout import unescaped
from .html_marks import KNOWN_MARKUP, QUOTE_MARK, SIGNATURE_MARK
from .html_text import html_text
from .limits import CLOCK, MAX_DEPTH
from .plain_text import bare_ends, enriched_text, unflow, unix_lines
from .structure import Scanner
from .unicode_text import nfc

CAP_NOTICE = "（邮件结构超出上限，其余部分未解析）"

HTML_TYPES = ("text/html", "application/xhtml+xml", "text/xhtml")
SIGNED_TYPES = ("application/pkcs7-mime", "application/x-pkcs7-mime")
NO_BODY_TYPES = frozenset("text/rtf text/vcard text/x-vcard text/directory text/css text/javascript text/x-amp-html"
                          " text/xml text/csv text/x-moz-deleted".split())
STUB = (r"(?:not|n't) (?:support|display|render|view|read|able)[^.\n]{0,40}html|view (?:it|this|the) [^.\n]{0,40}"
        r"(?:browser|online)|html[- ]?(?:capable|enabled|compatible|e-?mail|format|message|version)"
        r"|不支持[^\n]{0,20}html|html[^\n]{0,8}(?:格式|邮件|郵件|メール)|支持\s*html")
MARKUP_IN_TEXT = r"(?i)&nbsp;|</?(?:div|span|td|font|p)\b"


class Body:
    """Puts together the text of a message's parts; html tells whether any of it came from HTML."""

    def __init__(self):
        self.html = False

    def text(self, part):
        if part.parts is None:
            return "" if part.is_attachment else self._leaf(part)
        if part.is_message:
            return self._message(part.parts[0])
        if part.kind == "multipart/alternative":
            return self._alternative(part.parts)
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
        head = "\n".join(label + " ".join(decode_words(inner.fields[name]).split())
                         for name, label in labels if inner.fields.get(name))
        return "\n\n".join(filter(None, (head, self.text(inner))))

    def _alternative(self, parts):
        """The reading a person would choose: plain text, unless it is a stub or poorer than the rich one."""
        plain = [part for part in parts if part.kind == "text/plain"]
        rich = [part for part in parts if part.kind not in ("text/plain", "text/calendar")]
        text = self._joined(plain)
        if rich and may_be_poorer(text, html_source(rich[-1])):
            text = self._richer(text, rich)
        calendars = self._joined(part for part in parts if part.kind == "text/calendar")
        return "\n\n".join(filter(None, (text, calendars)))

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
        if kind in HTML_TYPES:
            return self._html(part.payload(text=True), part.charset)
        if kind in SIGNED_TYPES:
            from .signed_data import signed_content
            content = signed_content(part.payload())
            return self.text(Scanner(b"\n" + content, MAX_DEPTH // 2).run()) if content else ""
        if not kind.startswith(("text/", "message/")) or kind in NO_BODY_TYPES:
            return ""
        data = part.payload(text=True)
        if kind == "text/plain" and b"begin " in data:
            from .uuencode import without_uu_files
            data = without_uu_files(data)
        text = unix_lines(decode_text(data, part.charset))
        if kind == "text/plain" and "<" in text[:200] and re.match(r"(?i)\s*<(?:!doctype\s+html|html[\s>]|body[\s>])", text):
            return self._html(data, part.charset)
        if kind == "text/calendar":
            from .calendar_text import calendar_text
            return calendar_text(text)
        if kind in ("text/enriched", "text/richtext"):
            text = enriched_text(text)
        elif parameter(part.parameters, b"format").lower() == b"flowed":
            text = unflow(text, parameter(part.parameters, b"delsp").lower() == b"yes")
        return bare_ends(text).strip("\n")

    def _html(self, data, label):
        if codec_for(label) in ("", "cp1252"):
            meta = re.search(rb"(?i)<meta[^>]{0,300}charset\s*=\s*[\"']?\s*([\w.:-]{1,40})", data[:8192])
            label = meta.group(1) if meta and codec_for(meta.group(1)) else label
        self.html = True
        html = decode_text(data, label)
        return html_text(html) if "<" in html else bare_ends(unescaped(unix_lines(html))).strip("\n")


def shown_parts(related):
    """Of a related group its root, and what isn't shown inside it by an identifier."""
    start = parameter(related.parameters, b"start").strip(b"<> ")
    for part in related.parts:
        if start and part.fields.get(b"content-id", b"").strip(b"<> ") == start:
            return [part]
    return [part for i, part in enumerate(related.parts) if not i or b"content-id" not in part.fields]


def repeats(text, earlier):
    return len(text) > 20 and abs(len(text) - len(earlier)) < 200 and text.split() == earlier.split()


def html_source(part):
    while part.parts:
        part = part.parts[0]
    return part.payload(text=True) if part.kind in HTML_TYPES else b""


def may_be_poorer(plain, source):
    """Whether the rich alternative must be looked at: a cheap test that most mail passes."""
    own = without_links(plain)
    if len(own) * 8 < len(source) or not own.strip() or is_damaged(plain) or "\ufffd" in plain or is_stub(plain):
        return True
    low = source.lower()
    return any(map(low.__contains__, KNOWN_MARKUP))


def is_damaged(plain):
    return plain.count("?") * 5 > len(plain) or ("<" in plain or "&" in plain) and bool(re.search(MARKUP_IN_TEXT, plain))


def is_stub(plain):
    low = plain.lower() if len(plain) < 600 else ""
    return ("html" in low or "view" in low) and bool(re.search(STUB, low))


def is_better(rich, plain):
    rich_size = len("".join(rich.split()))
    if is_stub(plain) or rich.count("\ufffd") < plain.count("\ufffd"):
        return rich_size >= 10
    if is_damaged(plain) or QUOTE_MARK in rich or SIGNATURE_MARK in rich:
        return True
    return len("".join(without_links(plain).split())) < rich_size * 0.6


def without_links(plain):
    return re.sub(r"https?://\S+", "", plain) if "://" in plain else plain


def body_text(data):
    """(text, whether from HTML) of a message; data begins with a line feed."""
    scanner, body = Scanner(data), Body()
    text = body.text(scanner.run())
    if scanner.odd and not text.strip():
        body = Body()
        from .full_parser import full_parse
        text = body.text(full_parse(data))
    text = nfc(text).strip("\n")
    if scanner.capped:
        text = text.strip() + "\n\n" + CAP_NOTICE
    return text if text.strip() else "", body.html
