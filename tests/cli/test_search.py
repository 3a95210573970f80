"""Bodies of archived mail, from the archive's files to the words that find them."""

import email
import email.policy
import json
import random
import re
import shutil
import sqlite3
import subprocess
import time
import unittest

from cli_support import CLI, SUPPORT, CliCase, signal



def databases(home):
    return sorted((home / SUPPORT).glob("search-*.sqlite"))


def rows(database):
    """(id, columns, body) of each row."""
    connection = sqlite3.connect(database)
    found = connection.execute("SELECT record_id, subject, sender, recipients, attachments, body FROM email_fts")
    result = [(row[0], row[1:], row[5]) for row in found]
    connection.close()
    return result


def folded(text):
    """LIKE knows two cases of ASCII letters and no others, and no text behind a zero."""
    return "".join(chr(ord(c) | 32) if "A" <= c <= "Z" else c for c in text.split("\0")[0])


def records(archive):
    return json.loads((archive / "archive-index.json").read_text(encoding="utf-8"))["records"]


def parsed(path):
    return email.message_from_bytes(path.read_bytes(), policy=email.policy.default)


def plain_words(path):
    """Words of a message that is one sound text part; none for any other."""
    message = parsed(path)
    if message.get_content_type() != "text/plain" or message.defects:
        return []
    try:
        text = message.get_content()
    except (LookupError, UnicodeError):
        return []
    return [] if "\ufffd" in text else re.findall(r"\w{4,12}", text)


class SearchCase(CliCase):
    def setUp(self):
        super().setUp()
        self.mail = self.home("home", "--messages", "500")
        self.run_cli(self.mail, "refresh")
        self.archive = self.folder / "archive"

    def told(self, *arguments):
        """What the command says besides its answer."""
        done = subprocess.run([CLI, "--home", str(self.mail), "--json", *arguments], capture_output=True, check=True)
        return done.stderr.decode()

    def state(self):
        """Bodies by id; a repeated id would be a repeated row."""
        bodies = {}
        for database in databases(self.mail):
            for identifier, _, body in rows(database):
                self.assertNotIn(identifier, bodies)
                bodies[identifier] = body
        return bodies


class Searching(SearchCase):
    def test_what_is_in_the_files_is_found_and_nothing_else(self):
        self.run_cli(self.mail, "archive", "--to", self.archive, expect=3)
        listed = records(self.archive)
        bodies = self.state()
        self.assertEqual(set(bodies), {record["id"] for record in listed})
        random.seed(5)
        checked = 0
        for record in random.sample(listed, len(listed)):
            words = plain_words(self.archive / record["emlRelativePath"])
            if words and checked < 12:
                checked += 1
                self.assertIn(record["id"], self.run_cli(self.mail, "search", random.choice(words)))
        self.assertEqual(checked, 12)
        texts = rows(databases(self.mail)[0])
        for _ in range(25):
            text = random.choice([t for t in random.choice(texts)[1] if t])
            start = random.randrange(len(text))
            query = text[start:start + random.randint(1, 7)].swapcase().strip()
            if not query or "\0" in query or query.startswith("-"):
                continue
            expected = sorted(row[0] for row in texts if any(folded(query) in folded(column) for column in row[1]))
            self.assertEqual(self.run_cli(self.mail, "search", query), expected, query)

    def test_archives_are_searched_together_and_while_they_are_away(self):
        other = self.folder / "other"
        self.run_cli(self.mail, "archive", "--to", self.archive, "--limit", "100", expect=3)
        # Two archives made within one second count as one.
        index = json.loads((self.archive / "archive-index.json").read_text(encoding="utf-8"))
        (self.archive / "archive-index.json").write_text(json.dumps({**index, "createdAt": "2020-01-01T00:00:00Z"}))
        self.run_cli(self.mail, "archive", "--to", other, expect=3)
        self.assertEqual(len(databases(self.mail)), 2)
        expected = sorted(record["id"] for record in records(self.archive) + records(other)
                          if "会议" in record["subject"])
        found = self.run_cli(self.mail, "search", "会议")
        self.assertTrue(expected and set(expected) <= set(found))
        shutil.move(other, self.folder / "away")
        self.assertEqual(self.run_cli(self.mail, "search", "会议"), found)
        self.assertEqual(self.run_cli(self.mail, "index", "--force")["indexed"], len(records(self.archive)))
        self.assertEqual(self.run_cli(self.mail, "search", "会议"), found, "an archive that is away keeps its index")

    def test_without_index_nothing_is_indexed_until_it_is_asked_for(self):
        self.run_cli(self.mail, "archive", "--to", self.archive, "--no-index", expect=3)
        self.assertEqual(self.state(), {})
        self.assertEqual(self.run_cli(self.mail, "search", "会议"), [])
        self.assertIn(f"为它建立搜索索引：{self.archive}", self.told("search", "会议"))
        listed = records(self.archive)
        self.run_cli(self.mail, "show", listed[0]["id"])
        self.assertEqual(len(self.state()), 1, "what was read is prepared")
        self.assertIn(f"大多还搜索不到，运行 corvane-cli index 为它建立搜索索引：{self.archive}", self.told("search", "会议"))
        self.assertEqual(self.run_cli(self.mail, "index")["indexed"], len(listed) - 1)
        empty = sum(1 for body in self.state().values() if not body.strip())
        self.assertEqual(self.run_cli(self.mail, "index")["indexed"], empty, "only what has no text is tried again")
        self.assertEqual(self.told("search", "会议"), "")


class Damage(SearchCase):
    def setUp(self):
        super().setUp()
        self.run_cli(self.mail, "archive", "--to", self.archive, expect=3)
        self.whole = self.state()

    def test_a_killed_indexing_is_healed_by_the_next_one(self):
        random.seed(6)
        for _ in range(6):
            run = self.start_cli(self.mail, "index", "--force")
            time.sleep(random.uniform(0.05, 0.9))
            run.send_signal(signal.SIGKILL)
            run.communicate()
            self.run_cli(self.mail, "index")
            self.assertEqual(self.state(), self.whole)

    def test_an_interrupted_indexing_keeps_what_it_did(self):
        run = self.start_cli(self.mail, "index", "--force")
        while "正在准备正文预览".encode() not in run.stderr.readline() and run.poll() is None:
            pass
        run.send_signal(signal.SIGINT)
        output, _ = run.communicate(timeout=60)
        self.assertIn(run.returncode, (0, 130))
        self.assertIn("indexed", json.loads(output))
        self.assertTrue(set(self.state().items()) <= set(self.whole.items()))
        self.run_cli(self.mail, "index")
        self.assertEqual(self.state(), self.whole)


class OneMail(SearchCase):
    def setUp(self):
        super().setUp()
        self.run_cli(self.mail, "archive", "--to", self.archive, expect=3)
        self.entries = self.run_cli(self.mail, "library")

    def test_show_gives_the_record_and_its_texts(self):
        bodies = self.state()
        copied = next(e for e in self.entries if bodies[e["record"]["id"]].strip() and
                      parsed(self.archive / e["record"]["emlRelativePath"])["cc"])
        shown = self.run_cli(self.mail, "show", copied["entryID"])
        self.assertEqual(shown["record"], copied["record"])
        self.assertEqual(shown["body"], bodies[copied["record"]["id"]])
        self.assertIn("@", shown["cc"])
        self.assertEqual(shown["attachments"], copied["record"]["attachmentNames"])
        self.assertIn("error", self.run_cli(self.mail, "show", "no such entry", expect=1))

    def test_an_attachment_comes_out_whole_and_overwrites_nothing(self):
        entry, part = next((e, part) for e in self.entries
                           for part in parsed(self.archive / e["record"]["emlRelativePath"]).walk()
                           if part.get_filename() in e["record"]["attachmentNames"] and part.get_payload(decode=True))
        target = self.folder / "taken.bin"
        answer = self.run_cli(self.mail, "attachment", entry["entryID"], part.get_filename(), "--to", target)
        content = part.get_payload(decode=True)
        self.assertEqual((answer["path"], answer["bytes"]), (str(target), len(content)))
        self.assertEqual(target.read_bytes(), content)
        self.run_cli(self.mail, "attachment", entry["entryID"], part.get_filename(), "--to", target)
        target.write_bytes(b"mine")
        self.run_cli(self.mail, "attachment", entry["entryID"], part.get_filename(), "--to", target, expect=1)
        self.assertEqual(target.read_bytes(), b"mine")
        wrong = self.run_cli(self.mail, "attachment", entry["entryID"], "nothing", "--to", self.folder, expect=1)
        self.assertIn("这封邮件的附件是：" + "、".join(entry["record"]["attachmentNames"]), wrong["error"])
        link = self.folder / "link"
        link.symlink_to(self.folder / "elsewhere")
        self.run_cli(self.mail, "attachment", entry["entryID"], part.get_filename(), "--to", link, expect=1)
        self.assertFalse((self.folder / "elsewhere").exists())

    def test_an_attachments_name_stays_in_its_folder(self):
        record = self.entries[0]["record"]
        content = (b"MIME-Version: 1.0\r\nContent-Type: application/octet-stream; name=\"../../evil.bin\"\r\n"
                   b"Content-Disposition: attachment; filename=\"../../evil.bin\"\r\n\r\nevil")
        (self.archive / record["emlRelativePath"]).write_bytes(content)
        folder = self.folder / "a" / "b"
        folder.mkdir(parents=True)
        for name in ("../../evil.bin", "evil.bin", "..", "/etc/passwd"):
            self.run_cli_any(self.mail, "attachment", self.entries[0]["entryID"], name, "--to", folder)
        self.assertFalse((self.folder / "evil.bin").exists())
        self.assertTrue(all(path.parent == folder for path in self.folder.rglob("*evil*")))

    def run_cli_any(self, home, *arguments):
        run = self.start_cli(home, *arguments)
        run.communicate(timeout=60)
        self.assertIn(run.returncode, (0, 1))


if __name__ == "__main__":
    unittest.main()
