"""The place of the archive goes away in the middle of a run, comes back, and a second try completes the archive."""

import os
import unittest

from window_case import PICTURES, WindowCase
from window_driver import wait_until


class PlaceThatGoesAway(WindowCase):
    messages = 3000

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.refresh()

    def test_nothing_is_called_archived_and_the_next_try_completes(self):
        root, away = self.root, self.home / "away"
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
        self.assert_verified(len(list(root.rglob("*.eml"))))


if __name__ == "__main__":
    unittest.main()
