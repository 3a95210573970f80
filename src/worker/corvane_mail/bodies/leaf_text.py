"""The text of one part that holds text."""

import re

from ..charsets.decoding import decode_text
from ..charsets.label_codecs import codec_for
from ..html.layout import unescaped
from ..html.text import html_text
from ..parts.header_values import parameter
from .plain_text import bare_ends, unflow, unix_lines

HTML_DOCUMENT = r"(?i)\s*(?:<!--[^>]{0,2000}-->\s*)?<(?:!doctype\s+html|html[\s>]|body[\s>])"
META_CHARSET = rb"(?i)<meta[^>]{0,300}charset\s*=\s*[\"']?\s*([\w.:-]{1,40})"
WIDE = ("utf-16", "utf-32")
BASE64_LINES = rb"(?:[A-Za-z0-9+/]{60,76}=*\r?\n){3}"


def html_leaf(data, label, hint):
    """Text of an HTML document; a charset that it tells itself counts where its label tells nothing.

    One that tells in single bytes that it has two a character is wrong, whoever repeats it.
    """
    wide = codec_for(label).startswith(WIDE)
    if wide or codec_for(label) in ("", "cp1252"):
        meta = re.search(META_CHARSET, data[:8192])
        told = codec_for(meta.group(1)) if meta else ""
        if told:
            label = meta.group(1) if not told.startswith(WIDE) else b"" if wide else label
    html = decode_text(data, label, hint)
    return html_text(html) if "<" in html else bare_ends(unescaped(unix_lines(html))).strip("\n")


def plain_leaf(part, hint=""):
    """(text, whether it was HTML after all) of any other text."""
    data = part.payload(text=True)
    if part.is_binary(data) or part.kind == "message/partial" and re.search(BASE64_LINES, data[:4096]):
        return "", False
    if part.kind == "text/plain" and b"begin " in data:
        from ..packed.inline_files import without_files
        data = without_files(data)
    text = unix_lines(decode_text(data, part.charset, hint))
    if part.kind == "text/plain" and "<" in text[:200] and re.match(HTML_DOCUMENT, text):
        return html_leaf(data, part.charset, hint), True
    if part.kind in ("text/enriched", "text/richtext"):
        from .enriched_text import enriched_text
        text = enriched_text(text)
    elif parameter(part.parameters, b"format").lower() == b"flowed":
        text = unflow(text, parameter(part.parameters, b"delsp").lower() == b"yes")
    if text.startswith("-----BEGIN PGP SIGNED") or "\n-----BEGIN PGP SIGNED" in text:
        from .clear_signed import without_armor
        text = without_armor(text)
    return bare_ends(text).strip("\n"), False
