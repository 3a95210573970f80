"""Requests and answers as JSON, and lines for the log."""

import json
import sys

from .limits import Failure


def to_json(answer):
    """One line of JSON; a half of a surrogate pair, which a path may hold, stays an escape."""
    return json.dumps(answer, ensure_ascii=False).encode("utf-8", "backslashreplace")


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
