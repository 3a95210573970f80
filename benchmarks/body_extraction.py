"""Measures the mail worker's body extraction beside its floor and beside the standard parser.

Four ways over the same generated messages, alternating, best of the rounds, by processor time:
  batches    the worker as the program runs it, one process for 150 messages, its start included
  worker     the same worker serving all messages in one process
  floor      a splitter on bytes: header, boundary lines, one decoded text part; nothing else
  email      email.message_from_bytes with its default policy, get_body and get_content

Usage: python3 benchmarks/body_extraction.py [--messages 1500] [--rounds 3] [--python PATH] [--worker PATH] [--json FILE]
The worker measured is the built one (build/release, else build/dev), else that of the sources, which compiles itself.
"""

import argparse
import base64
import email
import email.policy
import json
import os
import quopri
import random
import re
import resource
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WORKERS = [os.path.join(ROOT, *folder, "mail_worker.py")
           for folder in (("build", "release", "bin"), ("build", "dev", "bin"), ("src", "worker"))]
BATCH = 150
MAX_BYTES = 2097152

ENGLISH = ("the report of last week has been sent to your office and we would like to hear what you think about "
           "these numbers before the meeting on Monday since some customers asked for a new price list").split()
CHINESE = "您好附件是上周的销售报告请在周一会议之前告诉我们您的意见客户希望得到新的价格表谢谢配合我们公司将安排发货时间地点"
FORMS = (("english plain", 5), ("english html", 4), ("chinese utf-8", 5), ("chinese gb2312", 4), ("attachment", 2))


def english(rng, words):
    text = " ".join(rng.choice(ENGLISH) for _ in range(words))
    return re.sub(r"(.{60,75}) ", r"\1\n", text)


def chinese(rng, characters):
    lines = ("".join(rng.choice(CHINESE) for _ in range(rng.randint(20, 60))) + "。"
             for _ in range(max(1, characters // 40)))
    return "\n".join(lines)


def html(text):
    paragraphs = "".join("<p class=\"MsoNormal\"><span lang=\"EN-US\">%s</span></p>\n" % line for line in text.split("\n"))
    return ("<html><head><meta http-equiv=\"Content-Type\" content=\"text/html\"><style>p.MsoNormal {margin: 0; "
            "font-size: 10.5pt}</style></head>\n<body lang=\"ZH-CN\"><div class=\"WordSection1\">\n" + paragraphs +
            "<table border=\"1\"><tr><td>1</td><td>2</td></tr></table></div></body></html>\n")


def encoded(data, encoding):
    if encoding == "base64":
        return base64.encodebytes(data)
    return quopri.encodestring(data) if encoding == "quoted-printable" else data


def text_part(subtype, text, charset, encoding):
    head = "Content-Type: text/%s; charset=\"%s\"\nContent-Transfer-Encoding: %s\n\n" % (subtype, charset, encoding)
    return head.encode() + encoded(text.encode(charset, "replace"), encoding)


def multipart(rng, kind, parts):
    boundary = b"----=_NextPart_%012x" % rng.getrandbits(48)
    body = b"".join(b"--" + boundary + b"\n" + part + b"\n" for part in parts)
    head = b"Content-Type: multipart/" + kind + b";\n\tboundary=\"" + boundary + b"\"\n\n"
    return head + b"This is a multi-part message in MIME format.\n\n" + body + b"--" + boundary + b"--\n"


def header(rng, number):
    hops = "".join("Received: from mx%d.example.com (mx%d.example.com [192.0.2.%d])\n\tby in.example.org (Postfix) with ESMTPS"
                   " id %010X\n\tfor <reader@example.org>; Mon, %d Jan 2023 10:00:00 +0800 (CST)\n"
                   % (hop, hop, rng.randint(1, 254), rng.getrandbits(40), rng.randint(1, 28)) for hop in range(3))
    subject = base64.b64encode(("关于第 %d 次会议的通知" % number).encode()).decode()
    return (hops + "DKIM-Signature: v=1; a=rsa-sha256; d=example.com; s=s1; b=%s\nFrom: =?utf-8?B?5byg5LiJ?= <zhang@example.com>\n"
            "To: reader@example.org\nSubject: =?utf-8?B?%s?=\nDate: Mon, 2 Jan 2023 10:00:00 +0800\n"
            "Message-ID: <%d.%08x@example.com>\nMIME-Version: 1.0\nX-Mailer: Example 1.0\n"
            % (base64.b64encode(rng.randbytes(128)).decode(), subject, number, rng.getrandbits(32))).encode()


def message(rng, number):
    form = rng.choices([name for name, _ in FORMS], [weight for _, weight in FORMS])[0]
    encoding = rng.choice(("base64", "quoted-printable"))
    if form == "english plain":
        body = text_part("plain", english(rng, rng.randint(80, 500)), "us-ascii", "7bit")
    elif form == "english html":
        text = english(rng, rng.randint(80, 300))
        body = multipart(rng, b"alternative", [text_part("plain", text, "utf-8", "quoted-printable"),
                                               text_part("html", html(text), "utf-8", "quoted-printable")])
    else:
        charset = "gb2312" if form == "chinese gb2312" else "utf-8"
        text = chinese(rng, rng.randint(100, 700))
        alternative = [text_part("plain", text, charset, encoding), text_part("html", html(text), charset, encoding)]
        choice = rng.random()
        body = multipart(rng, b"alternative", alternative) if choice < 0.5 else alternative[choice < 0.75]
        if form == "attachment":
            data = (b"Content-Type: application/pdf; name=\"report.pdf\"\nContent-Transfer-Encoding: base64\n"
                    b"Content-Disposition: attachment; filename=\"report.pdf\"\n\n" + base64.encodebytes(rng.randbytes(3000)))
            body = multipart(rng, b"mixed", [body, data])
    return header(rng, number) + body


def make_messages(folder, count):
    rng = random.Random(20230102)
    paths = []
    for number in range(count):
        path = os.path.join(folder, "%05d.eml" % number)
        with open(path, "wb") as file:
            file.write(message(rng, number))
        paths.append(path)
    return paths


def by_worker(command, paths):
    request = json.dumps({"command": "bodytext_batch", "file_paths": paths, "max_bytes": MAX_BYTES}).encode()
    run = subprocess.run(command, input=request, stdout=subprocess.PIPE, check=True)
    items = json.loads(run.stdout)["items"]
    assert len(items) == len(paths) and all(item["text"] for item in items)


def by_batches(command, paths):
    for start in range(0, len(paths), BATCH):
        by_worker(command, paths[start:start + BATCH])


def first_text(data):
    """The least that finding and decoding a text part takes."""
    head, _, body = data.partition(b"\n\n")
    boundary = re.search(rb"boundary=\"([^\"]+)\"", head)
    if boundary:
        return first_text(body.split(b"\n--" + boundary.group(1), 2)[1].lstrip(b"\n"))
    encoding = re.search(rb"(?i)content-transfer-encoding: *([\w-]+)", head)
    charset = re.search(rb"(?i)charset=\"?([\w-]+)", head)
    if encoding and encoding.group(1) == b"base64":
        body = base64.b64decode(body)
    elif encoding and encoding.group(1) == b"quoted-printable":
        body = quopri.decodestring(body)
    return body.decode(charset.group(1).decode() if charset else "ascii", "replace")


def by_floor(_command, paths):
    for path in paths:
        with open(path, "rb") as file:
            first_text(file.read(MAX_BYTES))


def by_email(_command, paths):
    for path in paths:
        with open(path, "rb") as file:
            message = email.message_from_bytes(file.read(MAX_BYTES), policy=email.policy.default)
        message.get_body(("plain", "html")).get_content()


WAYS = {"batches": by_batches, "worker": by_worker, "floor": by_floor, "email": by_email}


def processor_seconds():
    usages = resource.getrusage(resource.RUSAGE_SELF), resource.getrusage(resource.RUSAGE_CHILDREN)
    return sum(usage.ru_utime + usage.ru_stime for usage in usages)


def measure(paths, rounds, command):
    best = dict.fromkeys(WAYS, float("inf"))
    for _ in range(rounds):
        for name, way in WAYS.items():
            start = processor_seconds()
            way(command, paths)
            best[name] = min(best[name], processor_seconds() - start)
    return {name: len(paths) / seconds for name, seconds in best.items()}


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--messages", type=int, default=1500)
    options.add_argument("--rounds", type=int, default=3)
    options.add_argument("--python", default="/usr/bin/python3" if os.path.exists("/usr/bin/python3") else sys.executable)
    options.add_argument("--worker", default=next(filter(os.path.exists, WORKERS)))
    options.add_argument("--json", metavar="FILE")
    chosen = options.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        paths = make_messages(folder, chosen.messages)
        size = sum(map(os.path.getsize, paths)) / len(paths)
        rates = measure(paths, chosen.rounds, [chosen.python, "-I", "-B", chosen.worker])
    peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    print("%d messages of %.1f KB on average, batches of %d" % (chosen.messages, size / 1024, BATCH))
    print("%-9s %10s %14s %14s" % ("way", "bodies/s", "of the floor", "of email"))
    for name, rate in rates.items():
        print("%-9s %10.0f %14.2f %14.1f" % (name, rate, rate / rates["floor"], rate / rates["email"]))
    print("peak memory of a worker: %.0f MB" % (peak / 1024))
    document = {"measure": "body_extraction", "messages": chosen.messages, "bodiesPerSecond": rates,
                "ratioToFloor": rates["floor"] / rates["batches"], "peakKilobytes": peak}
    print(json.dumps(document))
    if chosen.json:
        with open(chosen.json, "w", encoding="utf-8") as file:
            json.dump(document, file)


if __name__ == "__main__":
    main()
