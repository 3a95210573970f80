"""The road from a full archive to free space: check, guide, originals deleted in Mail, check again. The guide gives no
condition for mail whose archived copies were taken away or altered while the window was open."""

import os
import sqlite3
import unittest

from window_case import PICTURES, WindowCase
from window_driver import wait_until


class Guide(WindowCase):
    messages = 120
    options = ("--no-odd", "--server-only", "0")

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.refresh()
        cls.run_cli("archive", "--to", cls.root, "--no-index")

    def check(self, window):
        window.click_part("checkButton")
        window.wait_for_part("checkButton", lambda button: button["enabled"] and button["text"] == "重新检查")

    def wait_for_figure(self, window, condition):
        return window.wait_for_part("heroFigure", lambda figure: condition(figure["text"]))["text"]

    def wait_for_condition(self, window):
        return window.wait_for_part("guideCondition", lambda condition: condition["text"])["text"]

    def wait_for_no_condition(self, window):
        window.wait_for_part("startGuideProof")
        self.assertIsNone(window.part("guideCondition"))

    def close(self, window, button):
        window.click_part(button)
        wait_until(lambda: window.part(button) is None, "the sheet to close")

    def open_guide_again(self, window):
        self.close(window, "closeGuideButton")
        window.click_part("guideButton")

    def delete_half_of_the_originals(self):
        with sqlite3.connect(self.home / "Library/Mail/V10/MailData/Envelope Index") as store:
            store.execute("DELETE FROM messages WHERE ROWID % 2 = 0")

    def test_conditions_and_figures_come_and_go_with_copies_and_originals(self):
        with self.display.window(self.home) as window:
            window.wait_for_part("updateButton")
            window.press("ctrl+2")
            self.check(window)
            freeable = self.wait_for_figure(window, lambda text: text[:1].isdigit())
            window.wait_for_focus("archivedAccounts")
            window.press("Home", "Return")
            window.click_part("guideButton")
            given = self.wait_for_condition(window)
            window.picture(PICTURES / "guide-1-sheet.png")

            os.rename(self.root, self.home / "away")
            self.open_guide_again(window)
            self.wait_for_no_condition(window)
            os.rename(self.home / "away", self.root)
            window.click_part("startGuideProof")
            self.assertEqual(self.wait_for_condition(window), given)
            for mail in self.root.rglob("*.eml"):
                mail.write_bytes(mail.read_bytes()[:-1] + b"!")
            self.open_guide_again(window)
            self.wait_for_no_condition(window)
            window.picture(PICTURES / "guide-2-altered.png")
            self.close(window, "closeGuideButton")
            self.close(window, "closeDetailButton")
            self.check(window)
            self.wait_for_figure(window, lambda text: text != freeable)

            self.run_cli("verify", self.root, expect=3)
            self.run_cli("archive", "--to", self.root, "--no-index")
            self.check(window)
            self.wait_for_figure(window, lambda text: text == freeable)
            self.delete_half_of_the_originals()
            window.press("ctrl+r")
            self.check(window)
            self.wait_for_figure(window, lambda text: text[:1].isdigit() and text != freeable)
            window.picture(PICTURES / "guide-3-deleted.png")
            self.assert_quiet_end(window)


if __name__ == "__main__":
    unittest.main()
