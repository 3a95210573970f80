"""Closing the window in the middle of a run: the question, both of its answers, and an archive in good order."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from window_driver import PATIENCE, ROOT, Display, said_by, wait_until

CLI = os.environ.get("CORVANE_CLI", str(ROOT / "build/dev/bin/corvane-cli"))
PICTURES = pathlib.Path(os.environ.get("CORVANE_PICTURES", str(ROOT / "build/pictures")))
MESSAGES = 12000


class CloseDuringARun(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.display = cls.enterClassContext(Display(1240, 840))
        folder = cls.enterClassContext(tempfile.TemporaryDirectory())
        cls.home = pathlib.Path(folder) / "home"
        subprocess.run([sys.executable, "-B", str(ROOT / "tools/make_sample_store.py"), "--quiet", "--messages",
                        str(MESSAGES), str(cls.home)], check=True)
        cls.root = cls.home / "Library/CloudStorage/Nutstore-lin@mail.example/邮件归档"
        cls.root.mkdir(parents=True)
        subprocess.run([CLI, "--home", str(cls.home), "refresh"], check=True, capture_output=True)

    def test_both_answers(self):
        with self.display.window(self.home) as window:
            window.wait_for_part("organizeTree", lambda tree: tree["count"] > 3)
            window.press("ctrl+4")
            window.wait_for_part("messageView", lambda view: view["count"] > 1000)
            window.press_to("messageView", "Tab")
            window.press("ctrl+a")
            window.click_part("archiveButton")
            window.click_part("destinationCard0")
            window.wait_for_part("startArchiveButton", lambda button: button["enabled"])
            window.click_part("startArchiveButton")
            window.wait_for_part("cancelRunButton")

            window.ask_to_close()
            window.wait_for_part("acceptButton", lambda button: button["focus"])
            self.assertIsNone(window.part("cancelRunButton"), "one sheet at a time")
            window.click_part("rejectButton")
            wait_until(lambda: window.part("rejectButton") is None, "the question to go")
            window.wait_for_part("cancelRunButton", lambda button: button["focus"])
            self.assertIsNone(window.process.poll())
            self.assertTrue(window.part("activity"), "the run goes on")

            window.press("ctrl+q")  # over the sheet of the run
            window.wait_for_part("acceptButton")
            window.picture(PICTURES / "close-question.png")
            window.click_part("acceptButton")
            self.assertEqual(window.process.wait(timeout=PATIENCE), 0, said_by(window.process))
        records = json.loads((self.root / "archive-index.json").read_text())["records"]
        self.assertTrue(0 < len(records) < MESSAGES / 2, len(records))
        verified = subprocess.run([CLI, "--home", str(self.home), "--json", "verify", str(self.root)],
                                  capture_output=True, text=True)
        found = json.loads(verified.stdout)
        self.assertEqual(found["checked"], len(records))
        for trouble in ("missing", "sizeMismatch", "unindexed", "identityMismatch", "duplicatePaths"):
            self.assertEqual(found[trouble], [], trouble)


if __name__ == "__main__":
    unittest.main()
