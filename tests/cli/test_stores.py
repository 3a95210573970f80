"""Stores that are locked, broken, foreign or not there: each with the text for its user and an exit status."""

import os
import pathlib
import re
import sqlite3
import subprocess
import unicodedata
import unittest

from cli_support import CLI, INDEX, SUPPORT, CliCase, tree_state

NO_MAIL = "没有找到本机 Mail 数据目录"
NO_INDEX = "没有找到 Mail 索引文件"
NO_ACCESS = "没有读取权限"
NOTHING_FOUND = "没有定位到可扫描的邮件文件"


class Stores(CliCase):
    def failure_text(self, home, *command):
        return self.run_cli(home, *command, expect=1)["error"]

    def test_homes_without_a_usable_store(self):
        empty = self.folder / "empty"
        empty.mkdir()
        without_index = self.folder / "without-index"
        (without_index / "Library/Mail/V10/MailData").mkdir(parents=True)
        blank = self.folder / "blank"
        (blank / INDEX).parent.mkdir(parents=True)
        (blank / INDEX).touch()
        garbage = self.folder / "garbage"
        (garbage / INDEX).parent.mkdir(parents=True)
        (garbage / INDEX).write_bytes(b"no database " * 1000)
        for home, text in ((empty, NO_MAIL), (without_index, NO_INDEX), (blank, NO_ACCESS), (garbage, NOTHING_FOUND)):
            before = tree_state(home / "Library") if (home / "Library").exists() else None
            for command in (("accounts",), ("refresh",)):
                self.assertIn(text, self.failure_text(home, *command), (home.name, command))
            if before is not None:
                self.assertEqual(tree_state(home / "Library"), before)
        self.assertIn("读取 Mail 索引失败", self.failure_text(garbage, "scan"))

    def test_a_locked_index_fails_a_scan_and_keeps_the_last_one(self):
        home = self.home("home", "--messages", "100", "--no-odd")
        self.run_cli(home, "refresh")
        known = len(self.run_cli(home, "messages"))
        lock = sqlite3.connect(home / INDEX, isolation_level=None)
        lock.execute("BEGIN EXCLUSIVE")
        try:
            self.assertIn("读取 Mail 索引失败", self.failure_text(home, "scan"))
        finally:
            lock.close()
        self.assertEqual(len(self.run_cli(home, "messages")), known)
        self.assertEqual(self.run_cli(home, "scan")["state"], "finished")

    def test_a_store_without_message_ids_and_one_in_wal_mode_are_read(self):
        for options in (("--no-message-id-header",), ("--wal",)):
            home = self.home(options[0].strip("-"), "--messages", "200", *options)
            before = tree_state(home / "Library")
            result = self.run_cli(home, "refresh")
            self.assertEqual(result["summary"]["scannedMessages"], self.manifest(home)["counts"]["local"])
            changed = {name for name, state in tree_state(home / "Library").items() if before.get(name) != state}
            self.assertTrue(all(name.endswith("-shm") for name in changed), changed)

    def test_a_store_without_an_index_is_read_file_by_file(self):
        home = self.home("home", "--messages", "150")
        manifest = self.manifest(home)
        for path in (home / INDEX).parent.glob("Envelope Index*"):
            path.unlink()
        before = tree_state(home / "Library")
        expected = {str(home / m["file"]): m for m in manifest["messages"] if m["local"] and m["attachmentNames"]}
        for runtime in ("/usr/bin/python3", str(self.crashing_runtime())):
            result = self.run_cli(home, "scan", environment={"CORVANE_PYTHON": runtime})
            self.assertEqual(result["state"], "finished")
            found = {m["id"]: m for m in self.run_cli(home, "messages")}
            self.assertGreater(len(found), 15)
            self.assertTrue(all(m["attachments"] for m in found.values()))
            known = [path for path in found if path in expected]
            self.assertGreater(len(known), 15)
            for path in known:
                self.assertEqual(found[path].get("messageIdentifier"), expected[path]["messageId"], path)
                if runtime.startswith("/usr"):
                    names = {unicodedata.normalize("NFC", a["fileName"]) for a in found[path]["attachments"]}
                    wanted = {unicodedata.normalize("NFC", name) for name in expected[path]["attachmentNames"]}
                    self.assertEqual(names, wanted, path)
        self.assertEqual(tree_state(home / "Library"), before)
        archive = self.folder / "archive"
        result = self.run_cli(home, "archive", "--to", archive, expect=3)
        self.assertEqual((result["failedCount"], len(result["variantWarnings"])), (0, 1))
        self.assertEqual(self.run_cli(home, "verify", archive)["checked"], result["archivedCount"])

    def test_diagnostics_are_written_after_a_scan_and_on_demand(self):
        home = self.home("home", "--messages", "100")
        log = home / SUPPORT / "restore-scan-diagnostic.log"
        before = tree_state(home / "Library")
        self.assertEqual(self.run_cli(home, "diagnose"), {"log": str(log)})
        on_demand = log.read_text(encoding="utf-8")
        self.run_cli(home, "refresh")
        for text in (on_demand, log.read_text(encoding="utf-8")):
            totals = re.findall(r"\] account=\S+ total=(\d+) withAttachments=\d+ excludedTrashOrJunk=\d+ "
                                r"sampleEmlxPresent=\d+ sampleEmlxMissing=\d+\n", text)
            self.assertEqual(sum(map(int, totals)), self.manifest(home)["counts"]["rows"])
        self.assertIn("] [reconcile] indexedTotal=", log.read_text(encoding="utf-8"))
        self.assertEqual(tree_state(home / "Library"), before)
        nothing = self.folder / "nothing"
        nothing.mkdir()
        self.run_cli(nothing, "diagnose")
        written = (nothing / SUPPORT / "restore-scan-diagnostic.log").read_text(encoding="utf-8")
        self.assertIn("stop reason=no-sqlite-or-envelope-index", written)

    def crashing_runtime(self):
        runtime = self.folder / "python3"
        runtime.write_text("#!/bin/sh\nread line\nkill -9 $$\n")
        runtime.chmod(0o700)
        return runtime

    def test_a_log_in_a_folder_that_takes_no_writes_is_read_from_a_copy(self):
        home = self.home("home", "--messages", "200", "--wal", "--no-odd")
        index = home / INDEX
        self.assertGreater(index.with_name(index.name + "-wal").stat().st_size, 0)
        index.with_name(index.name + "-shm").unlink(missing_ok=True)
        index.parent.chmod(0o555)
        self.addCleanup(index.parent.chmod, 0o755)
        temporary = self.folder / "tmp"
        temporary.mkdir()
        user = {}
        if os.geteuid() == 0:  # whom no permission holds back
            user = {"user": 65534, "group": 65534, "extra_groups": []}
            for folder in (self.folder, temporary, home):
                folder.chmod(0o777)
        try:
            subprocess.run([CLI, "--help"], stdout=subprocess.DEVNULL, check=True, **user)
        except PermissionError:
            self.skipTest("the program lies where an unprivileged user can't go")
        before = tree_state(home / "Library")
        result = self.run_cli(home, "refresh", environment={"TMPDIR": str(temporary)}, **user)
        self.assertEqual(result["summary"]["scannedMessages"], self.manifest(home)["counts"]["local"])
        self.assertEqual(tree_state(home / "Library"), before)
        self.assertEqual(list(temporary.iterdir()), [], "the copy is gone with its user")

    def test_samples_are_never_made_in_a_home_that_has_mail(self):
        (self.folder / "used/Library/Mail/V10").mkdir(parents=True)
        with self.assertRaises(subprocess.CalledProcessError):
            self.home("used")
        self.assertEqual(list(tree_state(self.folder / "used")), ["Library", "Library/Mail", "Library/Mail/V10"])

    def test_a_year_limit_beyond_the_store_is_advice(self):
        home = self.home("home", "--messages", "100", "--no-odd")
        self.run_cli(home, "refresh")
        text = self.run_cli(home, "scan", "--max-year", "1990", expect=1)["message"]
        self.assertIn("请将年份调整为", text)
        self.assertGreater(len(self.run_cli(home, "messages")), 50, "the cache of the whole scan stays")


    def test_logs_of_an_open_window_are_left_alone(self):
        home = self.home("home", "--messages", "60")
        support = home / SUPPORT
        support.mkdir(parents=True)
        line, logs = "a line of the window", ("performance.log", "archive-library-startup.log")
        for lock, stays in (("window.lock", True), ("other", False)):
            (support / lock).touch()
            for name in logs:
                (support / name).write_text(line + "\n")
            self.run_cli(home, "locations")
            (support / lock).unlink()
            self.assertEqual([line in (support / name).read_text() for name in logs], [stays, stays])


class Usage(unittest.TestCase):
    def test_wrong_usage_exits_with_two(self):
        for arguments in ((), ("nothing",), ("archive",), ("--home", "/does/not/exist", "accounts"),
                          ("messages", "--sort", "size")):
            done = subprocess.run([CLI, *arguments], capture_output=True, timeout=30)
            self.assertEqual((done.returncode, done.stdout), (2, b""), arguments)
        self.assertTrue(pathlib.Path(CLI).exists())


if __name__ == "__main__":
    unittest.main()
