"""The place of the archive goes away in the middle of a run, comes back, and a second try completes the archive."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from window_driver import ROOT, Display, wait_until

CLI = os.environ.get("CORVANE_CLI", str(ROOT / "build/dev/bin/corvane-cli"))
PICTURES = pathlib.Path(os.environ.get("CORVANE_PICTURES", str(ROOT / "build/pictures")))
MESSAGES = 3000


class PlaceThatGoesAway(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.display = cls.enterClassContext(Display(1240, 840))
        folder = cls.enterClassContext(tempfile.TemporaryDirectory())
        cls.home = pathlib.Path(folder) / "home"
        subprocess.run([sys.executable, "-B", str(ROOT / "tools/make_sample_store.py"), "--quiet", "--messages",
                        str(MESSAGES), str(cls.home)], check=True)
        cls.cloud = cls.home / "Library/CloudStorage/Nutstore-lin@mail.example"
        cls.cloud.mkdir(parents=True)
        subprocess.run([CLI, "--home", str(cls.home), "refresh"], check=True, capture_output=True)

    def test_nothing_is_called_archived_and_the_next_try_completes(self):
        root, away = self.cloud / "邮件归档", self.home / "away"
        with self.display.window(self.home) as window:
            window.wait_for_part("organizeTree", lambda tree: tree["count"] > 3)
            window.press("ctrl+4")
            window.wait_for_part("messageView", lambda view: view["count"] > 1000 and view["focus"])
            window.press("ctrl+a")
            window.click_part("archiveButton")
            window.click_part("destinationCard0")
            window.wait_for_part("startArchiveButton", lambda button: button["enabled"])
            window.click_part("startArchiveButton")
            wait_until(lambda: len(list(root.rglob("*.eml"))) > 50, "the run to be at work")
            os.rename(root, away)
            banner = window.wait_for_part("remarkBanner", lambda banner: banner["headline"] == "归档没有完成")
            self.assertTrue(banner)
            window.wait_for_part("archivePlaceLine", lambda line: line["text"] == "未连接")
            window.wait_for_part("startArchiveButton", lambda button: not button["enabled"])
            self.assertIsNone(window.part("tile0"), "no figures of a run whose index isn't written")
            window.picture(PICTURES / "away-1.png")
            self.assertFalse(root.exists(), "nothing is written beside the place that has gone")

            os.rename(away, root)
            window.wait_for_part("startArchiveButton", lambda button: button["enabled"])
            window.click_part("startArchiveButton")
            window.wait_for_part("doneButton", lambda button: button["focus"])
            window.picture(PICTURES / "away-2.png")
        verified = subprocess.run([CLI, "--home", str(self.home), "--json", "verify", str(root)],
                                  capture_output=True, text=True)
        found = json.loads(verified.stdout)
        self.assertEqual(found["checked"], len(list(root.rglob("*.eml"))))
        for trouble in ("missing", "sizeMismatch", "unindexed", "identityMismatch", "duplicatePaths"):
            self.assertEqual(found[trouble], [], trouble)


if __name__ == "__main__":
    unittest.main()
