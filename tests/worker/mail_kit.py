"""Builders of mail and ways to reach the worker, for the tests beside this file."""

import base64
import json
import os
import quopri
import subprocess
import sys
import tempfile
import unittest

WORKER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "src", "worker", "mail_worker.py")
sys.path.insert(0, os.path.dirname(WORKER))

from corvane_mail.attachments.listing import attachments_of  # noqa: E402
from corvane_mail.bodies.body import body_text  # noqa: E402
from corvane_mail.parts.structure import Scanner  # noqa: E402


def encode(data, encoding):
    if encoding == "base64":
        return base64.encodebytes(data)
    return quopri.encodestring(data) if encoding == "quoted-printable" else data


def part(content, kind="text/plain", charset="utf-8", encoding="8bit", extra=""):
    """A part (or a whole message) from text or bytes; charset "" leaves the parameter out."""
    data = content.encode(charset or "ascii") if isinstance(content, str) else content
    parameter = '; charset="%s"' % charset if charset and kind.startswith("text/") else ""
    head = "Content-Type: %s%s\nContent-Transfer-Encoding: %s\n%s\n" % (kind, parameter, encoding, extra)
    return head.encode() + encode(data, encoding)


def multipart(kind, *parts, boundary="b0undary"):
    line = b"--" + boundary.encode()
    head = ('Content-Type: multipart/%s; boundary="%s"\n\n' % (kind, boundary)).encode()
    return head + b"".join(line + b"\n" + each + b"\n" for each in parts) + line + b"--\n"


def attached(name_fields, data=b"%PDF-1.4 data\n", kind="application/pdf"):
    """An attachment with the given raw header lines, which tell its name."""
    head = b"Content-Type: " + kind.encode() + b"\nContent-Transfer-Encoding: base64\n" + name_fields + b"\n\n"
    return head + base64.encodebytes(data)


def mail(entity, head=b"From: a@example.com\nSubject: s\nMIME-Version: 1.0\n"):
    return head + entity


def body(message):
    return body_text(b"\n" + message)[0]


def html_body(markup):
    return body(mail(part(markup, "text/html")))


def attachments(message):
    return attachments_of(Scanner(b"\n" + message).run())


def run_worker(request, *options, python=sys.executable):
    """Exit status, standard output and standard error of one run."""
    data = request if isinstance(request, bytes) else json.dumps(request).encode()
    run = subprocess.run([python, "-I", "-B", WORKER, *options], input=data, capture_output=True, timeout=60)
    return run.returncode, run.stdout, run.stderr


class FolderTest(unittest.TestCase):
    """A test with a folder of its own for message files."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, name, data):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(data)
        return path
