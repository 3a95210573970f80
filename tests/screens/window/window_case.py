"""A display, and a home with samples and a cloud folder, for the walks of one class."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from window_driver import ROOT, Display

CLI = os.environ.get("CORVANE_CLI", str(ROOT / "build/dev/bin/corvane-cli"))
PICTURES = pathlib.Path(os.environ.get("CORVANE_PICTURES", str(ROOT / "build/pictures")))


class WindowCase(unittest.TestCase):
    messages = 400
    options = ()  # of the maker of samples

    @classmethod
    def setUpClass(cls):
        cls.display = cls.enterClassContext(Display(1240, 840))
        cls.home = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory())) / "home"
        subprocess.run([sys.executable, "-B", str(ROOT / "tools/make_sample_store.py"), "--quiet", "--messages",
                        str(cls.messages), *cls.options, str(cls.home)], check=True)
        cls.cloud = cls.home / "Library/CloudStorage/Nutstore-lin@mail.example"
        cls.cloud.mkdir(parents=True)
        cls.root = cls.cloud / "邮件归档"

    @classmethod
    def run_cli(cls, *arguments, expect=0):
        """Exit status must be `expect`; gives the JSON document."""
        done = subprocess.run([CLI, "--home", str(cls.home), "--json", *map(str, arguments)], capture_output=True)
        if done.returncode != expect:
            raise RuntimeError(f"{arguments}: {done.returncode} {done.stderr.decode()}")
        return json.loads(done.stdout) if done.stdout else None

    @classmethod
    def refresh(cls):
        cls.run_cli("refresh")

    def assert_quiet_end(self, window):
        """The program ends well when it is asked to, and none of its QML complained."""
        status, said = window.quit()
        self.assertEqual(status, 0, said)
        for trouble in ("QML", "qrc:", "TypeError"):
            self.assertNotIn(trouble, said)

    def records(self):
        """Of the archive's index; None before there is one."""
        index = self.root / "archive-index.json"
        return json.loads(index.read_text())["records"] if index.exists() else None

    def assert_verified(self, count):
        """The archive holds that many messages, as recorded, and nothing besides."""
        found = self.run_cli("verify", self.root)
        self.assertEqual(found["checked"], count)
        for trouble in ("missing", "sizeMismatch", "unindexed", "identityMismatch", "duplicatePaths"):
            self.assertEqual(found[trouble], [], trouble)
