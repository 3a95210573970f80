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

    @classmethod
    def setUpClass(cls):
        cls.display = cls.enterClassContext(Display(1240, 840))
        cls.home = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory())) / "home"
        subprocess.run([sys.executable, "-B", str(ROOT / "tools/make_sample_store.py"), "--quiet", "--messages",
                        str(cls.messages), str(cls.home)], check=True)
        cls.cloud = cls.home / "Library/CloudStorage/Nutstore-lin@mail.example"
        cls.cloud.mkdir(parents=True)
        cls.root = cls.cloud / "邮件归档"

    @classmethod
    def refresh(cls):
        subprocess.run([CLI, "--home", str(cls.home), "refresh"], check=True, capture_output=True)

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
        done = subprocess.run([CLI, "--home", str(self.home), "--json", "verify", str(self.root)],
                              capture_output=True, text=True)
        found = json.loads(done.stdout)
        self.assertEqual(found["checked"], count)
        for trouble in ("missing", "sizeMismatch", "unindexed", "identityMismatch", "duplicatePaths"):
            self.assertEqual(found[trouble], [], trouble)
