"""Requests and answers as JSON, and lines for the log."""

import json
import sys

from .limits import Failure


ENCODER = json.JSONEncoder(ensure_ascii=False)


def to_json(answer):
    """One line of JSON; a half of a surrogate pair, which a path may hold, stays an escape."""
    return ENCODER.encode(answer).encode("utf-8", "backslashreplace")


def item_json(path, text):
    """An item of a batch; of its parts alone the encoder makes texts several times faster."""
    return b'{"path": %b, "text": %b}' % (to_json(path), to_json(text))


def parse_request(line):
    def number(digits):
        return int(digits) if len(digits) < 20 else None
    try:
        request = json.loads(line.decode("utf-8"), parse_int=number)
    except (ValueError, RecursionError):
        raise Failure("请求不是有效的 JSON") from None
    if not isinstance(request, dict):
        raise Failure("请求不是有效的 JSON 对象")
    return request


def log(what, error):
    sys.stderr.write("mail_worker: %s: %s: %s\n" % (ascii(what), type(error).__name__, ascii(str(error))))
