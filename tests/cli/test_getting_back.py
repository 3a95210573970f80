"""Getting mail and its attachments out of an archive again, as other programs read them."""

import hashlib
import json
import mailbox
import pathlib
import re
import sqlite3
import unittest
import urllib.parse
import zipfile

from cli_support import INDEX, CliCase


def unquoted(mail):
    """A mail of an mboxrd file as it was."""
    return re.sub(rb"^>(>*From )", rb"\1", mail, flags=re.M)


def with_line_end(mail):
    """An mbox can't hold a mail without one."""
    return mail if mail.endswith(b"\n") else mail + b"\n"


class GettingBack(CliCase):
    def setUp(self):
        super().setUp()
        self.mail = self.home("home", "--messages", "120")
        self.run_cli(self.mail, "refresh")
        self.archive = self.folder / "archive"
        self.run_cli(self.mail, "archive", "--to", self.archive, expect=3)
        self.entries = self.run_cli(self.mail, "library")
        self.contents = {e["entryID"]: (self.archive / e["record"]["emlRelativePath"]).read_bytes()
                         for e in self.entries}

    def rewrite(self, entry, content):
        """The mail as if it had been archived with this content."""
        (self.archive / entry["record"]["emlRelativePath"]).write_bytes(content)
        path = self.archive / "archive-index.json"
        index = json.loads(path.read_text(encoding="utf-8"))
        for record in index["records"]:
            if record["id"] == entry["record"]["id"]:
                record["sizeBytes"] = len(content)
                record["contentHash"] = "sha256:" + hashlib.sha256(content).hexdigest()
        path.write_text(json.dumps(index), encoding="utf-8")
        self.contents[entry["entryID"]] = content

    def test_every_format_gives_back_the_same_bytes(self):
        self.rewrite(self.entries[0], b"From: a@b\n\nFrom here\n>From there\r\n>>From\n\nFrom ")
        self.rewrite(self.entries[1], b"From: a@b\r\n\r\n\r\nFrom x\r\n\r\n")
        expected = sorted(self.contents.values())
        total = sum(map(len, expected))
        for name, read in (("mbox", self.mails_of_mbox), ("zip", self.mails_of_zip), ("eml", self.mails_of_folder)):
            target = self.folder / ("out." + name)
            answer = self.run_cli(self.mail, "export", "--format", name, "--to", target)
            self.assertEqual(answer, {"exported": len(expected), "bytes": total, "failures": []})
            ends = with_line_end if name == "mbox" else bytes
            self.assertEqual(read(target), sorted(map(ends, expected)), name)
            again = 0 if name == "eml" else 1
            self.run_cli(self.mail, "export", "--format", name, "--to", target, expect=again)
            self.assertEqual(len(read(target)), len(expected), "a second export has changed the first one")

    def mails_of_mbox(self, path):
        box = mailbox.mbox(path, create=False)
        return sorted(unquoted(box.get_bytes(key)) for key in box.keys())

    def mails_of_zip(self, path):
        with zipfile.ZipFile(path) as packed:
            self.assertIsNone(packed.testzip())
            names = [info.filename for info in packed.infolist()]
            self.assertEqual(len(names), len({name.casefold() for name in names}))
            self.assertTrue(all(re.fullmatch(r"(\d{4}|未知年份)/[^/\\:*?\"<>|]+\.eml", name) for name in names), names)
            return sorted(packed.read(name) for name in names)

    def mails_of_folder(self, path):
        return sorted(each.read_bytes() for each in path.rglob("*") if each.is_file())

    def test_an_export_is_chosen_by_mails_filters_and_threads(self):
        one = self.entries[3]["entryID"]
        name = self.entries[3]["record"]["mailbox"]
        of_mailbox = [e for e in self.entries if e["record"]["mailbox"] == name]
        dated = [e["record"]["date"][:4] for e in self.entries if "date" in e["record"]]
        year = dated[0]
        of_year = [each for each in dated if each == year]
        for number, (arguments, expected) in enumerate((
                ([one], 1), (["--mailbox", name], len(of_mailbox)), ([one, "--mailbox", name], 1),
                (["--year", year], len(of_year)), (["--year", "1-3000"], len(dated)),
                (["--location", str(self.archive)], len(self.entries)))):
            answer = self.run_cli(self.mail, "export", *arguments, "--format", "eml", "--to", self.folder / str(number))
            self.assertEqual(answer["exported"], expected, arguments)
        self.run_cli(self.mail, "export", "--mailbox", "nowhere", "--format", "mbox", "--to", self.folder / "no", expect=1)
        self.assertFalse((self.folder / "no").exists())
        self.run_cli(self.mail, "export", one, "--format", "mbox", "--to", self.archive / "in.mbox", expect=1)

    def test_attachments_come_out_under_names_of_their_own(self):
        part = (b"--b\r\nContent-Type: application/octet-stream\r\nContent-Disposition: attachment; filename=\"%s\"\r\n\r\n%s\r\n")
        files = [(b"x.txt", b"one"), (b"x.txt", b"two"), (b"../x.txt", b"three"), (b"image001.png", b"four")]
        content = b"From: a@b\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n" + b"".join(
            part % file for file in files) + b"--b--\r\n"
        for entry in self.entries[:2]:
            self.rewrite(entry, content)
        path = self.archive / "archive-index.json"
        index = json.loads(path.read_text(encoding="utf-8"))
        ids = [entry["record"]["id"] for entry in self.entries[:2]]
        for record in index["records"]:
            if record["id"] in ids:
                record["attachmentNames"] = [name.decode() for name, _ in files] + ["lost.pdf"]
        path.write_text(json.dumps(index), encoding="utf-8")
        target = self.folder / "taken"
        answer = self.run_cli(self.mail, "attachments", *(e["entryID"] for e in self.entries[:2]), "--to", target,
                              expect=3)
        self.assertEqual([failure["name"] for failure in answer["failures"]], ["lost.pdf"] * 2)
        found = sorted((pathlib.Path(each["path"]).name, pathlib.Path(each["path"]).read_bytes()) for each in answer["saved"])
        self.assertEqual(sorted(content for _, content in found), sorted(2 * [b"one", b"two", b"three"]))
        self.assertEqual(sorted(each.name for each in target.iterdir()), [name for name, _ in found])

    def test_mail_and_its_original_are_found_without_being_opened(self):
        entry = next(e for e in self.entries if e["record"].get("messageIdentifier"))
        path = self.archive / entry["record"]["emlRelativePath"]
        self.assertEqual(self.run_cli(self.mail, "open", entry["entryID"], "--dry-run"), {"path": str(path)})
        url = self.run_cli(self.mail, "original", entry["entryID"], "--dry-run")["url"]
        identifier = entry["record"]["messageIdentifier"]
        self.assertEqual(urllib.parse.unquote(url).lower(), "message://<%s>" % identifier.lower())
        self.assertRegex(url, r"\Amessage://%3C[A-Za-z0-9@._+=~%-]+%3E\Z")
        with sqlite3.connect(self.mail / INDEX) as database:
            database.execute("UPDATE message_global_data SET message_id_header = NULL")
        self.run_cli(self.mail, "original", entry["entryID"], "--dry-run", expect=1)
        path.unlink()
        self.run_cli(self.mail, "open", entry["entryID"], "--dry-run", expect=1)


if __name__ == "__main__":
    unittest.main()
