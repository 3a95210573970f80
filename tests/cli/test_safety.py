"""One question, asked of the program after others have been at work on Mail's store or on the archive: is every mail
that it calls archived there, byte for byte? The answer is read from .emlx and .eml files without it."""

import collections
import json
import os
import pathlib
import shutil
import sqlite3
import subprocess
import unittest
import urllib.parse

from cli_support import CLI, INDEX, SETTINGS, SUPPORT, CliCase, tree_state

RESCAN = "请重新扫描后再试"


def path_of(url):
    return pathlib.Path(urllib.parse.unquote(url.removeprefix("file://")))


def mail_in(emlx):
    count, _, rest = emlx.read_bytes().partition(b"\n")
    return rest[:int(count)]


def body_of(mail):
    return mail.partition(b"\r\n\r\n" if b"\r\n\r\n" in mail else b"\n\n")[2]


def mails_below(*roots):
    return {path.read_bytes() for root in roots for path in root.rglob("*.eml")
            if path.is_file() and not path.is_symlink()}


class Safety(CliCase):
    def setUp(self):
        super().setUp()
        self.mail = self.home("home", "--no-odd", "--messages", "60", "--server-only", "0")
        self.archive = self.folder / "archive"
        self.run_cli(self.mail, "refresh")

    def local_copies(self, message):
        urls = {message["fileURL"], *message.get("relatedMessageFileURLs", [])}
        return sorted(path for path in map(path_of, urls) if path.is_file())

    def expect_true_word(self, *roots):
        """Gives the number of messages that are called archived."""
        archived = mails_below(*roots)
        safe = [message for message in self.run_cli(self.mail, "messages", "--filter", "onlyMigrated")
                if self.local_copies(message)]
        for message in safe:
            mails = [mail_in(path) for path in self.local_copies(message)]
            held = {body_of(mail) for mail in mails if mail in archived}
            self.assertTrue({body_of(mail) for mail in mails} <= held, message["subject"])
        figures = self.run_cli(self.mail, "stats")["deletionSafety"]
        self.assertEqual(figures["archived"], len(safe))
        return len(safe)

    def archive_some(self, root=None, expect=(0, 3)):
        run = self.start_cli(self.mail, "archive", "--to", root or self.archive, "--no-index")
        output, errors = run.communicate(timeout=120)
        self.assertIn(run.returncode, expect, errors.decode(errors="replace")[-3000:])
        return json.loads(output)

    def expect_healed(self, *roots):
        self.archive_some(root=roots[0] if roots else None)
        local = self.run_cli(self.mail, "stats")["deletionSafety"]["local"]
        self.assertEqual(self.expect_true_word(*(roots or [self.archive])), local)
        self.assertEqual(self.run_cli(self.mail, "prove")["proven"], local)

    def test_guide_gives_no_year_in_which_its_search_finds_mail_that_is_not_proven(self):
        self.archive_some()
        overview = self.run_cli(self.mail, "overview", "--check")
        key, year = next((g["key"], y["year"]) for g in overview["groups"] for y in g["years"]
                         if y["status"] == "cleanable")
        account = next(e["record"]["accountIdentifier"] for e in self.run_cli(self.mail, "library", "--account", key))
        paths = [path_of(m["fileURL"]) for m in self.run_cli(self.mail, "messages", "--account", account)
                 if m.get("date", "")[:4] not in ("", str(year)) and "relatedMessageFileURLs" not in m
                 and "rash" not in m["mailbox"] and "Junk" not in m["mailbox"]]

        def guide():
            return self.run_cli(self.mail, "guide", key, "--year", year)

        self.assertEqual((guide()["years"], "leftOut" in guide()), ([year], False))
        # The user gives the account another name, and Mail gets another account.
        system = sqlite3.connect(self.mail / "Library/Accounts/Accounts4.sqlite")
        system.execute("DELETE FROM ZACCOUNT WHERE ZIDENTIFIER = ? COLLATE NOCASE", (account[7:],))
        system.execute("INSERT INTO ZACCOUNT(ZIDENTIFIER, ZACCOUNTDESCRIPTION) VALUES(?, '改名')", (account[7:],))
        system.commit()
        self.assertEqual([each["shownAs"] for each in guide()["accountsInMail"]], ["改名"])
        store = sqlite3.connect(self.mail / INDEX)
        store.execute("INSERT INTO mailboxes(ROWID, url) VALUES(9999, 'imap://11111111-2222-4333-8444-555555555555/IN')")
        store.execute("INSERT INTO messages(ROWID, mailbox) VALUES(999999, 9999)")
        store.commit()
        self.assertEqual(guide()["years"], [])
        store.execute("DELETE FROM messages WHERE ROWID = 999999")
        store.execute("UPDATE messages SET date_received = strftime('%s', ?) WHERE ROWID = ?",
                      (f"{year}-06-01", int(paths[0].stem)))
        store.commit()
        store.close()
        self.assertEqual(guide()["years"], [year], "received in this year, and proven")
        sound = paths[0].read_bytes()
        paths[0].write_bytes(sound.replace(b"\n\n", b"\n\nx", 1))
        self.assertEqual(guide()["years"], [])
        paths[0].write_bytes(sound)
        self.run_cli(self.mail, "prove")
        self.assertEqual(guide()["years"], [year])
        paths[0].unlink()
        alone = guide()
        self.assertEqual((alone["years"], [each["year"] for each in alone["leftOut"]]), ([], [year]))
        (self.mail / INDEX).rename(self.mail / "away")
        self.assertEqual(guide()["years"], [], "nobody knows what the search would find")

    def test_a_forbidden_place_is_neither_made_nor_kept(self):
        self.archive_some()
        before = tree_state(self.mail / "Library")
        for place in ("Library/Mail/V10/归档", SUPPORT + "/归档"):
            refused = self.run_cli(self.mail, "archive", "--to", self.mail / place, expect=1)["error"]
            self.assertIn("请选择别的位置", refused)
            self.assertFalse((self.mail / place).exists())
        self.assertIn("套在一起",
                      self.run_cli(self.mail, "archive", "--to", self.archive / "2014/in", expect=1)["error"])
        self.assertEqual(tree_state(self.mail / "Library"), before)
        self.assertEqual([each["rootPath"] for each in self.run_cli(self.mail, "locations")], [str(self.archive)])
        self.expect_true_word(self.archive)

    def test_what_could_not_be_kept_is_told(self):
        self.archive_some()
        support = self.mail / ".local/share/Corvane"
        shutil.rmtree(support)
        support.write_text("in the way", encoding="utf-8")
        done = subprocess.run([CLI, "--home", str(self.mail), "refresh"], capture_output=True, timeout=120, check=True)
        self.assertEqual(done.stderr.decode().count("没能写入"), 1)

    def renumber(self):
        """As Mail does when it rebuilds its index: the rows of a mailbox change places, and so do its files."""
        store = sqlite3.connect(self.mail / INDEX)
        mailboxes = collections.defaultdict(dict)
        for path in (self.mail / "Library/Mail").rglob("*.emlx"):
            if path.stem.isdecimal():
                mailboxes[str(path).partition("/Data/")[0]][int(path.stem)] = path
        for files in mailboxes.values():
            rows = sorted(files)
            moved = dict(zip(rows, rows[1:] + rows[:1]))
            contents = {row: path.read_bytes() for row, path in files.items()}
            for before, after in [(row, -row) for row in rows] + [(-row, moved[row]) for row in rows]:
                store.execute("UPDATE messages SET ROWID = ? WHERE ROWID = ?", (after, before))
                for table in ("recipients", "attachments"):
                    store.execute(f"UPDATE {table} SET message = ? WHERE message = ?", (after, before))
            for row in rows:
                files[moved[row]].write_bytes(contents[row])
        store.commit()
        store.close()

    def test_an_index_that_mail_rebuilt_after_the_scan(self):
        self.renumber()
        result = self.archive_some(expect=[3])
        self.assertGreater(result["failedCount"], 10)
        self.assertTrue(all(RESCAN in failure["reason"] for failure in result["failures"]), result["failures"][:2])
        for record in json.loads((self.archive / "archive-index.json").read_text(encoding="utf-8"))["records"]:
            mail = (self.archive / record["emlRelativePath"]).read_bytes()
            self.assertIn(record["messageIdentifier"].encode(), mail.lower(), record["subject"])
        self.run_cli(self.mail, "refresh")
        self.expect_true_word(self.archive)
        self.expect_healed()

    def differing_copies(self):
        """Gives a message the copy of another body, as the same mail in two mailboxes, and the two paths."""
        messages = self.run_cli(self.mail, "messages")
        first, second = [path_of(m["fileURL"]) for m in messages if m.get("messageIdentifier")
                         and len(self.local_copies(m)) == 1][:2]
        rows = [int(path.stem) for path in (first, second)]
        store = sqlite3.connect(self.mail / INDEX)
        columns = "message_id, global_message_id, sender, subject, subject_prefix, date_sent, date_received, size"
        store.execute(f"UPDATE messages SET ({columns}) = (SELECT {columns} FROM messages WHERE ROWID = ?) "
                      "WHERE ROWID = ?", rows)
        store.commit()
        store.close()
        mail = mail_in(first) + b"one line more\r\n"
        second.write_bytes(b"%d\n" % len(mail) + mail)
        self.run_cli(self.mail, "refresh")
        whole = next(m for m in self.run_cli(self.mail, "messages") if len(self.local_copies(m)) == 2)
        return whole, first, second

    def test_a_variant_that_failed_once_is_tried_again(self):
        message, *_ = self.differing_copies()
        self.archive_some()
        index = self.archive / "archive-index.json"
        records = json.loads(index.read_text(encoding="utf-8"))["records"]
        variants = [self.archive / record["emlRelativePath"] for record in records
                    if record.get("messageIdentifier") == message["messageIdentifier"]]
        self.assertEqual(len(variants), 2)
        shutil.rmtree(self.archive)
        away = subprocess.run([CLI, "--home", str(self.mail), "archive", "--to", self.archive, "--limit", "0"],
                              capture_output=True, timeout=120, check=True)
        self.assertIn("磁盘可能没有连接", away.stderr.decode())
        variants[1].mkdir(parents=True)
        self.archive_some()
        self.expect_true_word(self.archive)
        variants[1].rmdir()
        self.expect_healed()

    def as_somebody(self):
        """Options of a process whom permissions hold back, and who has the whole folder of the test."""
        if os.geteuid() != 0:
            return {}
        for path in (self.folder, *self.folder.rglob("*")):
            os.lchown(path, 65534, 65534)
        somebody = {"user": 65534, "group": 65534, "extra_groups": []}
        try:
            subprocess.run([CLI, "--help"], stdout=subprocess.DEVNULL, check=True, **somebody)
        except PermissionError:
            self.skipTest("the program lies where an unprivileged user can't go")
        return somebody

    def test_a_copy_that_cannot_be_read(self):
        for copy in self.differing_copies()[1:]:
            shutil.rmtree(self.archive, ignore_errors=True)
            somebody = self.as_somebody()
            copy.chmod(0)
            result = self.run_cli(self.mail, "archive", "--to", self.archive, "--no-index", expect=3, **somebody)
            figures = self.run_cli(self.mail, "stats", **somebody)["deletionSafety"]
            copy.chmod(0o600)
            self.assertIn(str(copy), [failure["messageFilePath"] for failure in result["failures"]])
            self.assertEqual(figures["archived"], figures["local"] - 1)
            self.expect_true_word(self.archive)
            self.run_cli(self.mail, "prove", expect=3)
            self.expect_healed()

    def test_a_foreign_index_makes_nothing_safe(self):
        own = self.folder / "own"
        self.archive_some(root=own)
        foreign = self.mail / "Library/CloudStorage/Dropbox-X/archive"
        foreign.mkdir(parents=True)
        shutil.copy(own / "archive-index.json", foreign)
        shutil.rmtree(own)
        (self.mail / SETTINGS).unlink()
        for path in (self.mail / SUPPORT).glob("*archive*"):
            shutil.rmtree(path) if path.is_dir() else path.unlink()
        found = self.run_cli(self.mail, "locations")
        self.assertIn(str(foreign), json.dumps(found, ensure_ascii=False))
        self.assertEqual(self.expect_true_word(foreign), 0)
        self.expect_healed(self.archive, foreign)

    def interrupted_run(self, act):
        run = self.start_cli(self.mail, "archive", "--to", self.archive, "--no-index")
        while not list(self.archive.rglob("*.eml")) and run.poll() is None:
            os.sched_yield()
        act()
        output, _ = run.communicate(timeout=120)
        return run.returncode, json.loads(output)

    def test_two_runs_at_a_time(self):
        statuses = []
        other = lambda: statuses.append(self.start_and_end_another())
        statuses.append(self.interrupted_run(other)[0])
        self.assertIn(0, statuses)
        self.assertTrue(set(statuses) <= {0, 1}, statuses)
        self.expect_true_word(self.archive)
        self.expect_healed()

    def start_and_end_another(self):
        run = self.start_cli(self.mail, "archive", "--to", self.archive, "--no-index")
        run.communicate(timeout=120)
        return run.returncode

    def mounted_disk(self):
        """Mounts a disk of its own around the archive's folder; what it gives mounts it again."""
        image, disk = self.folder / "disk.img", self.folder / "disk"
        image.write_bytes(b"")
        os.truncate(image, 32 << 20)
        disk.mkdir()
        mount = lambda: subprocess.run(["mount", "-o", "loop", image, disk], check=True, stderr=subprocess.DEVNULL)
        try:
            subprocess.run(["mkfs.ext4", "-q", "-F", image], check=True, stderr=subprocess.DEVNULL,
                           env={**os.environ, "PATH": os.environ["PATH"] + ":/usr/sbin:/sbin"})
            mount()
        except (OSError, subprocess.CalledProcessError):
            self.skipTest("no disks can be mounted here")
        self.addCleanup(subprocess.run, ["umount", "-l", disk], stderr=subprocess.DEVNULL)
        return mount

    def lose_the_disk_in_a_run(self, folder):
        mount = self.mounted_disk()
        disk = self.folder / "disk"
        self.archive = disk / folder
        self.interrupted_run(lambda: subprocess.run(["umount", "-l", disk], check=True))
        self.assertEqual(list(disk.rglob("*")), [], "nothing is written below the mount point")
        mount()
        self.expect_true_word(disk)
        self.expect_healed()

    def test_a_disk_that_goes_in_a_run(self):
        self.lose_the_disk_in_a_run("archive")

    def test_a_disk_that_is_the_archive_and_goes_in_a_run(self):
        self.lose_the_disk_in_a_run("")


if __name__ == "__main__":
    unittest.main()
