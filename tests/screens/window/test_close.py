"""Closing the window in the middle of a run: the question, both of its answers, and an archive in good order."""

import unittest

from window_case import PICTURES, WindowCase
from window_driver import PATIENCE, said_by, wait_until


class CloseDuringARun(WindowCase):
    messages = 12000

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.root.mkdir()
        cls.refresh()

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
            window.wait_for_part("rejectButton", lambda button: button["focus"])
            self.assertIsNone(window.part("cancelRunButton"), "one sheet at a time")
            window.click_part("rejectButton")
            wait_until(lambda: window.part("rejectButton") is None, "the question to go")
            window.wait_for_part("cancelRunButton")
            self.assertIsNone(window.process.poll())
            self.assertTrue(window.part("activity"), "the run goes on")

            window.press("ctrl+q")  # over the sheet of the run
            window.wait_for_part("acceptButton")
            window.picture(PICTURES / "close-question.png")
            window.click_part("acceptButton")
            self.assertEqual(window.process.wait(timeout=PATIENCE), 0, said_by(window.process))
        count = len(self.records())
        self.assertTrue(0 < count < self.messages / 2, count)
        self.assert_verified(count)


if __name__ == "__main__":
    unittest.main()
