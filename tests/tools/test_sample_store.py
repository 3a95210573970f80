"""What the tests of the program, which compare it with the manifest of a sample store, can't show: that
the store is the same each time, as odd and broken as it says, and never made over a real one."""

from __future__ import annotations

import email
import email.header
import email.policy
import email.utils
import hashlib
import json
import os
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

SCRIPT = os.path.join(os.path.dirname(__file__), "../../tools/make_sample_store.py")


def make(home: str, *options: str) -> subprocess.CompletedProcess:
    return subprocess.run([sys.executable, SCRIPT, home, "--quiet", *options],
                          capture_output=True, text=True)


def index_path(home: str) -> str:
    return os.path.join(home, "Library/Mail/V10/MailData/Envelope Index")


def shell_rows(home: str, sql: str) -> list[dict]:
    result = subprocess.run(["sqlite3", "-readonly", "-json", index_path(home), sql],
                            capture_output=True, check=True)
    return json.loads(result.stdout or b"[]")


def manifest(home: str) -> dict:
    with open(os.path.join(home, "sample-store.json"), encoding="utf-8") as file:
        return json.load(file)


def tree(home: str) -> dict[str, str]:
    found = {}
    for folder, folders, names in os.walk(home):
        for name in folders:
            found[os.path.relpath(os.path.join(folder, name), home)] = "folder"
        for name in names:
            path = os.path.join(folder, name)
            with open(path, "rb") as file:
                found[os.path.relpath(path, home)] = hashlib.sha256(file.read()).hexdigest()
    return found


def cut(data: bytes) -> bytes | None:
    """The message of an .emlx by its count; None where the first line is no count."""
    line, feed, rest = data.partition(b"\n")
    text = line.strip() if feed else b""
    if not re.fullmatch(rb"\d{1,18}", text):
        return None
    return rest[:int(text)]


def read(home: str, path: str) -> bytes:
    with open(os.path.join(home, path), "rb") as file:
        return file.read()


def decoded_sender(data: bytes) -> tuple[str, str]:
    # The newer header parser puts a blank between two encoded words of a name.
    name, address = email.utils.parseaddr(email.message_from_bytes(data)["from"])
    return str(email.header.make_header(email.header.decode_header(name))), address


class DefaultStore(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = tempfile.mkdtemp(prefix="sample-store-")
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.home = os.path.join(cls.folder, "home")
        made = make(cls.home)
        assert made.returncode == 0, made.stderr
        cls.manifest = manifest(cls.home)
        cls.messages = cls.manifest["messages"]

    def test_same_seed_gives_the_same_bytes_and_another_seed_does_not(self):
        first, second, third = (os.path.join(self.folder, name) for name in ("a", "b", "c"))
        for home, seed in ((first, "5"), (second, "5"), (third, "6")):
            made = make(home, "--messages", "150", "--seed", seed)
            self.assertEqual(made.returncode, 0, made.stderr)
        self.assertEqual(tree(first), tree(second))
        self.assertNotEqual(tree(first), tree(third))

    def test_every_message_file_is_told_of(self):
        told = {message[key] for message in self.messages for key in ("file", "partialFile")}
        told |= set(self.manifest["orphanFiles"])
        found = {path for path in tree(self.home) if "/V10/" in path
                 and "/Messages/" in path and not os.path.basename(path).startswith("._")}
        self.assertEqual(found, told - {None})

    def test_broken_files_are_broken_as_their_tags_say(self):
        broken = {
            "file-empty": lambda count, rest: count is None,
            "file-negative": lambda count, rest: count < 0,
            "file-zero-count": lambda count, rest: count == 0 < len(rest),
            "file-too-large": lambda count, rest: count > len(rest) and b"</plist>" in rest,
            "file-cut-short": lambda count, rest: count > len(rest) and b"</plist>" not in rest,
            "file-overflow": lambda count, rest: count >= 2 ** 63,
            "file-letters": lambda count, rest: count is None,
            "file-not-utf8": lambda count, rest: count is None,
            "file-no-line-feed": lambda count, rest: count is None and not rest,
            "file-headers-only": lambda count, rest: b"\n\n" not in rest[:count],
            "file-crlf-message": lambda count, rest: b"\n" not in rest[:count].replace(b"\r\n", b""),
        }
        files = {message["tag"]: message["file"] for message in self.messages}
        for tag, is_broken in broken.items():
            line, _, rest = read(self.home, files[tag]).partition(b"\n")
            count = int(line) if re.fullmatch(rb"-?\d+ *", line) else None
            self.assertTrue(is_broken(count, rest), tag)

    def test_everyday_files_say_what_the_index_says(self):
        checked = 0
        for message in self.messages:
            if message["tag"] or not message["local"]:
                continue
            checked += 1
            data = cut(read(self.home, message["file"]))
            parsed = email.message_from_bytes(data, policy=email.policy.default)
            self.assertEqual(parsed["subject"], message["subject"])
            self.assertEqual(decoded_sender(data),
                             (message["senderName"], message["senderAddress"]))
            self.assertEqual(parsed["message-id"], f"<{message['messageIdHeader'].strip('<>')}>")
            self.assertLess(abs(parsed["date"].datetime.timestamp() - message["date"]), 3600)
            names = [part.get_filename() for part in parsed.iter_attachments()
                     if part.get_content_disposition() == "attachment"]
            self.assertEqual(names, message["attachmentNames"])
            # A broken transfer encoding or charset would show as a defect or as a replacement.
            body = parsed.get_body(("plain",))
            self.assertFalse([part for part in parsed.walk() if part.defects])
            self.assertNotIn("\ufffd", body.get_content())
        self.assertGreater(checked, 350)

    def test_every_odd_case_is_in_the_default_store_and_none_without_them(self):
        home = os.path.join(self.folder, "larger")
        self.assertEqual(make(home, "--messages", "4400", "--no-files").returncode, 0)
        tags = {message["tag"] for message in self.messages}
        self.assertEqual(tags, {message["tag"] for message in manifest(home)["messages"]})
        plain = os.path.join(self.folder, "plain")
        self.assertEqual(make(plain, "--messages", "200", "--no-odd").returncode, 0)
        result = manifest(plain)
        self.assertEqual({message["tag"] for message in result["messages"]}, {None})
        self.assertEqual((result["orphanFiles"], result["counts"].get("unlisted")), ([], None))


class Options(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = tempfile.mkdtemp(prefix="sample-store-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.home = os.path.join(self.folder, "home")

    def make(self, *options: str) -> None:
        made = make(self.home, "--messages", "120", *options)
        self.assertEqual(made.returncode, 0, made.stderr)

    def test_wal_keeps_rows_that_only_the_log_has(self):
        self.make("--wal")
        count = "SELECT COUNT(*) AS n FROM messages;"
        self.assertEqual(shell_rows(self.home, count), [{"n": 120}])
        self.assertEqual(shell_rows(self.home, "PRAGMA integrity_check;"),
                         [{"integrity_check": "ok"}])
        uri = f"file:{urllib.parse.quote(index_path(self.home))}?immutable=1"
        db = sqlite3.connect(uri, uri=True)
        self.addCleanup(db.close)
        self.assertLess(db.execute(count).fetchone()[0], 120)

    def test_columns_databases_and_files_can_be_left_out(self):
        self.make("--no-message-id-header", "--no-accounts-db", "--no-files", "--no-manifest")
        columns = [row["name"] for row in shell_rows(
            self.home, "SELECT name FROM pragma_table_info('message_global_data');")]
        self.assertIn("message_id", columns)
        self.assertNotIn("message_id_header", columns)
        left = tree(self.home)
        self.assertFalse([path for path in left if path.endswith(".emlx") or "Accounts" in path
                          or path == "sample-store.json"])

    def test_index_does_not_depend_on_files_being_written(self):
        self.make()
        other = os.path.join(self.folder, "other")
        self.assertEqual(make(other, "--messages", "120", "--no-files").returncode, 0)
        self.assertEqual(tree(os.path.dirname(index_path(self.home)))["Envelope Index"],
                         tree(os.path.dirname(index_path(other)))["Envelope Index"])
        self.assertEqual(manifest(other)["counts"].get("local"), None)

    def test_used_home_is_refused_and_left_as_it_is(self):
        os.makedirs(os.path.join(self.home, "Library/Mail/V10"))
        before = tree(self.home)
        made = make(self.home)
        self.assertNotEqual(made.returncode, 0)
        self.assertIn("already there", made.stderr)
        self.assertEqual(tree(self.home), before)


if __name__ == "__main__":
    unittest.main()
