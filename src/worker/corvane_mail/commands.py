"""The commands of the worker: from the fields of a request to those of its answer, or its pieces as bytes."""

import binascii
import re
import time

from .bodies.body import body_text
from .html.marks import QUOTE_MARK, SIGNATURE_MARK
from .json_lines import item_json, log
from .limits import BATCH_SECONDS, CLOCK, DEFAULT_DATA_BYTES, DEFAULT_LIST_BYTES, DEFAULT_TEXT_BYTES, SECONDS, Failure
from .mail_file import Mail
from .parts.structure import Scanner

EMPTY_PREVIEW = "暂无正文预览"


def required(request, key, kind):
    value = request.get(key)
    if not isinstance(value, kind):
        raise Failure("请求缺少字段：" + key)
    return value


def byte_limit(request, default):
    value = request.get("max_bytes", default)
    if isinstance(value, bool) or not isinstance(value, int) or value < 0:
        raise Failure("请求的 max_bytes 无效")
    return min(value, 1 << 31)


def mail_of(request, limit):
    text = request.get("message_text")
    if isinstance(text, str) and "file_path" not in request:
        return Mail.of_text(text, limit)
    return Mail.of_file(required(request, "file_path", str), limit)


def preview(request):
    text, html = body_text(mail_of(request, byte_limit(request, DEFAULT_TEXT_BYTES)).data)
    text = re.sub("\n*(?:" + SIGNATURE_MARK + "|" + QUOTE_MARK + ")\n*", "\n\n", text).strip("\n")
    return {"ok": True, "preview": text or EMPTY_PREVIEW, "is_html": html}


def bodytext_batch(request):
    paths, limit = required(request, "file_paths", list), byte_limit(request, DEFAULT_TEXT_BYTES)
    if not all(isinstance(path, str) for path in paths):
        raise Failure("请求的 file_paths 无效")
    return batch_pieces(paths, limit)


def batch_pieces(paths, limit):
    """The answer, one item a path, in order; what fails or comes too late has an empty text."""
    finish = time.monotonic() + BATCH_SECONDS
    yield b'{"ok": true, "items": ['
    for i, path in enumerate(paths):
        seconds = min(SECONDS["bodytext_batch"], finish - time.monotonic())
        text = ""
        try:
            text = CLOCK.run(seconds, file_text, path, limit) if seconds > 0 else ""
        except Exception as error:
            log(path, error)
        yield (b", " if i else b"") + item_json(path, text)
    yield b"]}"


def file_text(path, limit):
    return body_text(Mail.of_file(path, limit).data)[0]


def attachments(request):
    from .attachments.listing import attachments_of
    mail = mail_of(request, byte_limit(request, DEFAULT_LIST_BYTES))
    found = attachments_of(Scanner(mail.data).run())
    return {"ok": True, "attachments": [{"file_name": each.name, "content_type": each.kind,
                                         "estimated_size": each.size(mail.cut, mail.size)} for each in found]}


def attachment_data(request):
    from .attachments.listing import attachments_of
    from .attachments.search import find_attachment
    name, limit = required(request, "file_name", str), byte_limit(request, DEFAULT_DATA_BYTES)
    mail = mail_of(request, 2 * limit + DEFAULT_LIST_BYTES)
    occurrence = request.get("occurrence", 0)
    if isinstance(occurrence, bool) or not isinstance(occurrence, int) or occurrence < 0:
        raise Failure("请求的 occurrence 无效")
    found = find_attachment(attachments_of(Scanner(mail.data).run()), name, occurrence)
    if not found:
        raise Failure("没有在邮件中找到附件：" + name)
    data = b"" if found.is_cut(mail.cut) else found.data()
    if found.is_cut(mail.cut) or len(data) > limit:
        raise Failure("附件超过大小上限：" + name)
    if not data and b"x-apple-content-length" in found.part.fields:
        raise Failure("附件内容不在邮件文件内：" + name)
    return base64_pieces(data)


def base64_pieces(data):
    yield b'{"ok": true, "attachment_data_base64": "'
    for start in range(0, len(data), 3 << 20):
        yield binascii.b2a_base64(data[start:start + (3 << 20)], newline=False)
    yield b'"}'


COMMANDS = {"preview": preview, "bodytext_batch": bodytext_batch, "attachments": attachments,
            "attachment_data": attachment_data}
