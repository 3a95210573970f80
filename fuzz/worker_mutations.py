#!/usr/bin/env python3
"""Feeds the worker with odd mail that was changed by the grammar of mail: fields, parameters, parts, transfer encodings,
markup and packed forms, spliced, nested, repeated and cut. Each input must give a text and a list of attachments that can
be written as JSON, without an exception, in bounded time and memory.

Inputs are numbered; seed and number make the same input each time. The work runs in a process of its own, which this one
starts anew behind an input that ended it."""

import argparse
import json
import os
import pathlib
import random
import re
import resource
import signal
import struct
import subprocess
import sys
import tempfile
import time
import traceback
import unicodedata

import mail_grammar

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "src" / "worker"))

from corvane_mail.attachments.search import find_attachment  # noqa: E402
from corvane_mail.attachments.listing import attachments_of  # noqa: E402
from corvane_mail.bodies.body import body_text  # noqa: E402
from corvane_mail.json_lines import item_json, to_json  # noqa: E402
from corvane_mail.mail_file import Mail  # noqa: E402
from corvane_mail.parts.structure import Scanner  # noqa: E402

PROCESSOR_SECONDS = 3.0  # of one input of at most mail_grammar.LONGEST bytes; linear work takes a twentieth
HANGING_SECONDS = 30.0   # of the processor at one input; then the process is ended, whatever it does
MEMORY_BYTES = 1 << 30
POSITION = struct.Struct("<QQ")  # the number at work and how many are done


class TooSlow(BaseException):
    pass


def slow(_number, _frame):
    raise TooSlow


def check(data, rng):
    """What the worker does with a file, but for reading it."""
    mail = Mail(b"\n" + data, len(data) + rng.choice((0, 0, 0, 5000)), rng.random() < 0.5)
    text, _ = body_text(mail.data)
    assert json.loads(item_json("/x", text))["text"] == text, "the text doesn't survive JSON"
    # Longer lines are composed in pieces, and a run of marks may be cut.
    if all(len(line) <= 400 for line in text.split("\n")):
        assert unicodedata.is_normalized("NFC", text), "a text that isn't composed"
    assert not re.search("[\0-\x08\x0b-\x1f\x7f-\x9f]", text), "a control character in the text"
    found = attachments_of(Scanner(mail.data).run())
    sizes = [each.size(mail.cut, mail.size) for each in found]
    assert all(size >= 0 for size in sizes), "a size below zero"
    names = [each.name for each in found]
    assert all(names), "an attachment without a name"
    to_json({"names": names, "kinds": [each.kind for each in found]}).decode("utf-8")
    for name in names[:3]:
        wanted = find_attachment(found, name)
        assert wanted is not None, "an attachment can't be found by its own name"
        wanted.data()


def limited(work, *arguments):
    """Runs the work within the limits of one input. The reason of a failure, or None."""
    try:
        signal.setitimer(signal.ITIMER_PROF, PROCESSOR_SECONDS)
        work(*arguments)
        return None
    except TooSlow:
        return "takes more than %g seconds of processor" % PROCESSOR_SECONDS
    except BaseException:
        return traceback.format_exc()
    finally:
        signal.setitimer(signal.ITIMER_PROF, 0)


def keep(findings, seed, number, reason):
    data = mail_grammar.message(seed, number)
    path = pathlib.Path(findings) / ("worker-%d-%d" % (seed, number))
    path.write_bytes(data)
    print("worker: input %d of seed %d, kept as %s:\n%s" % (number, seed, path, reason), flush=True)


def work_on(options):
    """The child: works on inputs from its first one on until its time is over."""
    signal.signal(signal.SIGPROF, slow)
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_BYTES, MEMORY_BYTES))
    position = open(options.position, "r+b", buffering=0)
    number, done, failed = options.first, 0, 0
    while time.time() < options.until and (not options.inputs or done < options.inputs):
        position.seek(0)
        position.write(POSITION.pack(number, done))
        data = mail_grammar.message(options.seed, number)
        reason = limited(check, data, random.Random(number))
        if reason:
            failed += 1
            keep(options.findings, options.seed, number, reason)
        number, done = number + 1, done + 1
    position.seek(0)
    position.write(POSITION.pack(number, done))
    return 1 if failed else 0


def start(options, first, until, position):
    return subprocess.Popen([sys.executable, "-B", __file__, "--child", "--seed=%d" % options.seed, "--first=%d" % first, "--until=%f" % until,
                             "--inputs=%d" % options.inputs, "--findings=" + options.findings, "--position=" + position])


def processor_seconds(process):
    """Of a process that runs, or has ended and not been waited for."""
    fields = pathlib.Path("/proc/%d/stat" % process).read_text().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def watched(child, position):
    """Waits for the child; ends it when it stays at one input for too long. A busy machine doesn't count."""
    last, since = None, 0.0
    while child.poll() is None:
        time.sleep(0.2)
        number = POSITION.unpack(pathlib.Path(position).read_bytes())[0]
        spent = processor_seconds(child.pid)
        if number != last:
            last, since = number, spent
        elif spent - since > HANGING_SECONDS:
            child.kill()
    return child.wait()


def supervise(options):
    until, number, done, findings = time.time() + options.seconds, options.first, 0, 0
    started = time.monotonic()
    with tempfile.NamedTemporaryFile() as position:
        while time.time() < until:
            position.seek(0)
            position.write(POSITION.pack(number, 0))
            position.flush()
            status = watched(start(options, number, until, position.name), position.name)
            number, ended = POSITION.unpack(pathlib.Path(position.name).read_bytes())
            done += ended
            findings += status != 0
            if status in (0, 1):
                break
            keep(options.findings, options.seed, number, "ended its process, exit status %d" % status)
            number, done = number + 1, done + 1
    print("#%d DONE exec/s: %d" % (done, done / max(time.monotonic() - started, 0.001)))
    return 1 if findings else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--seconds", type=float, default=10)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--first", type=int, default=0, help="number of the first input")
    parser.add_argument("--inputs", type=int, default=0, help="no more than so many")
    parser.add_argument("--findings", default=".", help="folder for inputs that fail")
    parser.add_argument("--file", help="runs one input out of a file")
    for name in ("--position", "--until"):
        parser.add_argument(name, type=float if name == "--until" else str, help=argparse.SUPPRESS)
    parser.add_argument("--child", action="store_true", help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.file:
        signal.signal(signal.SIGPROF, slow)
        reason = limited(check, pathlib.Path(options.file).read_bytes(), random.Random(0))
        sys.exit(reason)
    sys.exit(work_on(options) if options.child else supervise(options))


if __name__ == "__main__":
    main()
