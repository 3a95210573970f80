"""What others could see or be led to believe: modes of files, characters that act on a terminal or turn a name, log
lines, remains of killed runs, and commands that don't end."""

import contextlib
import json
import os
import re
import signal
import sqlite3
import stat
import subprocess
import time
import unittest
import uuid

from cli_support import CLI, INDEX, SUPPORT, CliCase

HIDDEN = re.compile("[\x00-\x1f\x7f-\x9f\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")
SUBJECT = "\x1b]0;owned\x07 inv\u202efdp.exe\n失败：\u009b31m\u2066x"


class Readers(CliCase):
    def open_to_others(self, folder, known=()):
        """Paths that somebody else could do anything with, folders in which nobody gets that far left out."""
        return sorted(str(path.relative_to(folder)) for path in folder.rglob("*") if path not in known
                      and not path.is_symlink() and path.stat().st_mode & (stat.S_IRWXG | stat.S_IRWXO))

    def work_through(self, home, archive, **options):
        self.run_cli(home, "refresh", **options)
        self.run_cli(home, "archive", "--to", archive, **options)
        self.run_cli(home, "index", "--force", **options)
        self.run_cli(home, "search", "the", **options)
        entry = self.run_cli(home, "library", **options)[0]
        self.run_cli(home, "show", entry["entryID"], **options)
        self.run_cli(home, "diagnose", **options)
        messages = self.run_cli(home, "messages", **options)
        self.run_cli(home, "preview", messages[0]["fileURL"].removeprefix("file://"), **options)
        for each in self.run_cli(home, "library", **options):
            for name in each["record"]["attachmentNames"]:
                return self.run_cli(home, "attachment", each["entryID"], name, "--to", archive.parent / "taken", **options)

    def test_nothing_of_ours_is_open_to_others(self):
        for mask in (0, 0o022):
            home = self.home(f"home-{mask}", "--messages", "60", "--no-odd")
            known = set(home.rglob("*"))
            temporary = self.folder / f"tmp-{mask}"
            temporary.mkdir()
            made = self.folder / f"made-{mask}"
            made.mkdir()
            before = os.umask(mask)
            try:
                self.work_through(home, made / "archive", environment={"TMPDIR": str(temporary)})
            finally:
                os.umask(before)
            self.assertEqual(self.open_to_others(home, known), [])
            self.assertEqual(self.open_to_others(made), [])
            self.assertEqual(list(temporary.iterdir()), [])

    def test_an_archive_permits_what_its_folder_does(self):
        home = self.home("home", "--messages", "60", "--no-odd")
        self.run_cli(home, "refresh")
        archive = self.folder / "shared"
        for mode in (0o750, 0o700):
            archive.mkdir(exist_ok=True)
            archive.chmod(mode)
            before = os.umask(0)
            try:
                self.run_cli(home, "archive", "--to", archive, "--limit", 5)
            finally:
                os.umask(before)
        modes = {(path.is_dir(), stat.S_IMODE(path.stat().st_mode)) for path in archive.rglob("*")}
        self.assertEqual(modes - {(True, 0o700), (False, 0o600)}, {(True, 0o750), (False, 0o640)})
        self.assertEqual(stat.S_IMODE((archive / "archive-index.json").stat().st_mode), 0o600)


class Deceivers(CliCase):
    def hostile_home(self):
        home = self.home("home", "--messages", "60", "--no-odd")
        with sqlite3.connect(home / INDEX) as store:
            store.execute("UPDATE subjects SET subject = ? || ROWID", (SUBJECT,))
        store.close()
        return home

    def printed(self, home, *arguments):
        done = subprocess.run([CLI, "--home", str(home), *map(str, arguments)], capture_output=True, timeout=60)
        return done.stdout.decode(), done.stderr.decode()

    def test_no_subject_acts_on_a_terminal_forges_a_line_or_turns_a_name(self):
        home = self.hostile_home()
        archive = self.folder / "archive"
        self.run_cli(home, "refresh")
        listed = len(self.run_cli(home, "messages"))
        texts = {name: self.printed(home, *command) for name, command in
                 {"messages": ("messages",), "json": ("--json", "messages"),
                  "archive": ("archive", "--to", archive, "--log")}.items()}
        entry = self.run_cli(home, "library")[0]
        file = archive / entry["record"]["emlRelativePath"]
        for name, command in {"library": ("library",), "show": ("show", entry["entryID"]), "missing": ("preview", "\x1b[1m"),
                              "preview": ("preview", file)}.items():
            texts[name] = self.printed(home, *command)
        for name, streams in texts.items():
            for text in streams:
                self.assertEqual(HIDDEN.findall(text.replace("\n", "")), [], name)
        self.assertEqual(len(texts["messages"][0].splitlines()), listed + 1, "a heading and a line for each")
        self.assertIn("<U+202E>fdp.exe␊失败", texts["messages"][0])
        self.assertIn("\x1b]0;owned\x07 inv\u202efdp.exe", json.loads(texts["json"][0])[0]["subject"])
        self.assertEqual([path for path in archive.rglob("*") if HIDDEN.search(path.name)], [])
        self.assertIn("fdp.exe", file.name)

    def test_log_lines_are_for_those_who_ask(self):
        home = self.home("home", "--messages", "60", "--no-odd")
        quiet = self.printed(home, "refresh")[1] + self.printed(home, "accounts")[1]
        self.assertNotIn("@", quiet)
        self.assertNotRegex(quiet, r"(?m)^\[[A-Za-z]")
        self.assertRegex(self.printed(home, "--log", "accounts")[1], r"(?m)^\[Accounts\] ")


class Remains(CliCase):
    def test_those_of_a_killed_process_go_with_the_next_start(self):
        home = self.home("home", "--messages", "60", "--no-odd")
        self.run_cli(home, "refresh")
        unfinished = f".corvane-{str(uuid.uuid4()).upper()}.tmp"
        left = [self.folder / f"corvane-rows-{str(uuid.uuid4()).upper()}.json", self.folder / "archive" / unfinished,
                home / SUPPORT / unfinished, home / SUPPORT / "index-cache" / unfinished]
        mine = [path.with_name("corvane-notes.tmp") for path in left]
        for path in left + mine:
            path.parent.mkdir(exist_ok=True)
            path.write_text("x")
        self.run_cli(home, "archive", "--to", self.folder / "archive", environment={"TMPDIR": str(self.folder)})
        self.assertEqual([path for path in left if path.exists()], [])
        self.assertEqual([path for path in mine if not path.exists()], [])


class Ends(CliCase):
    def start_hanging(self):
        """A command whose question to a database of Mail's is never answered."""
        home = self.home("home", "--messages", "60", "--no-odd")
        database = home / "Library/Accounts/Accounts4.sqlite"
        database.unlink(missing_ok=True)
        database.parent.mkdir(parents=True, exist_ok=True)
        with contextlib.closing(sqlite3.connect(database)) as accounts:
            accounts.execute("CREATE VIEW ZACCOUNT AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT "
                             "max(i) AS Z_PK, '' AS ZIDENTIFIER, '' AS ZUSERNAME, '' AS ZACCOUNTDESCRIPTION, "
                             "0 AS ZPARENTACCOUNT FROM n")
        run = self.start_cli(home, "refresh")
        for clean in (run.stderr.close, run.stdout.close, run.wait, run.kill):
            self.addCleanup(clean)
        time.sleep(1)
        self.assertIsNone(run.poll(), "the command doesn't hang")
        return run

    def assert_ended(self, run, signals, limit):
        begin = time.monotonic()
        for _ in range(signals):
            run.send_signal(signal.SIGTERM)
            time.sleep(0.2)
        self.assertEqual(run.wait(timeout=20), 130)
        self.assertLess(time.monotonic() - begin, limit)

    def test_one_signal_ends_a_command_soon(self):
        self.assert_ended(self.start_hanging(), 1, 10)

    def test_a_second_one_ends_it_at_once(self):
        self.assert_ended(self.start_hanging(), 2, 1)


if __name__ == "__main__":
    unittest.main()
