"""Reads requests and writes their answers: one for the whole input, or one a line."""

import gc
import os
import sys

from .commands import COMMANDS
from .json_lines import log, parse_request, to_json
from .limits import BATCH_SECONDS, CLOCK, MAX_REQUEST, SECONDS, Failure


def refusal(text):
    return [to_json({"ok": False, "error": text})]


def answer(line):
    """(pieces of the answer to one request, whether it was the last)."""
    try:
        if len(line) > MAX_REQUEST:
            raise Failure("请求过长")
        request = parse_request(line)
        command = request.get("command")
        if command == "shutdown":
            return [to_json({"ok": True})], True
        if not isinstance(command, str) or command not in COMMANDS:
            raise Failure("未知命令：" + str(command)[:100])
        # A batch sets the time for each message by itself.
        seconds = BATCH_SECONDS if command == "bodytext_batch" else SECONDS[command]
        result = CLOCK.run(seconds, COMMANDS[command], request)
        return [to_json(result)] if isinstance(result, dict) else result, False
    except Failure as failure:
        return refusal(str(failure)), False
    except MemoryError:
        return refusal("处理邮件时内存不足"), False
    except Exception as error:
        log("request", error)
        return refusal("处理邮件时出错：" + type(error).__name__), False


def write(output, pieces):
    for piece in pieces:
        output.write(piece)
    output.write(b"\n")
    output.flush()


def serve(source, output):
    done = False
    while not done:
        line = source.readline(MAX_REQUEST + 1)
        if not line:
            return
        rest = line
        while len(rest) > MAX_REQUEST and not rest.endswith(b"\n"):
            rest = source.readline(MAX_REQUEST + 1)
        if line.strip():
            pieces, done = answer(line)
            write(output, pieces)


def main(arguments):
    CLOCK.use_signals()
    source, output = sys.stdin.buffer, sys.stdout.buffer
    try:
        if "--serve" in arguments:
            serve(source, output)
        else:
            # One run is too short for cycles to gather.
            gc.disable()
            write(output, answer(source.read(MAX_REQUEST + 1))[0])
            sys.stderr.flush()
            os._exit(0)
    except BrokenPipeError:
        os._exit(1)
