"""The road of a first archive and the mail list without a pointer: only keys, and no place on the screen is known."""

import unittest

from window_case import PICTURES, WindowCase
from window_driver import wait_until


class KeyboardWalk(WindowCase):
    def test_keys_alone(self):
        with self.display.window(self.home) as window:
            self.update(window)
            self.tick(window)
            self.archive(window)
            self.mail_list(window)
            self.assert_quiet_end(window)

    def update(self, window):
        window.wait_for_focus("emptyStateButton")  # the one thing to do
        window.press("Tab")
        window.tab_to("emptyStateButton")
        window.press("Return")
        wait_until((self.home / ".local/share/Corvane/home-scan-snapshot.json").exists, "the end of the scan")
        window.wait_for_part("organizeTree", lambda tree: tree["count"] > 3)

    def tick(self, window):
        window.tab_to("place-home")
        way = window.tab_to("organizeTree")
        self.assertIn("updateButton", way, "the head comes before the panes")
        self.assertLess(way.index("yearChart"), way.index("accountList"))
        window.press("Home", "Down", "shift+Down", "shift+Down")
        window.press("ctrl+c")
        lines = window.wait_for_clipboard(lambda text: text.count("\n") == 2).split("\n")
        self.assertTrue(all(" 封 · " in line for line in lines), lines)
        window.picture(PICTURES / "keys-1-tree.png")
        window.press("space")  # the three years, from the last
        self.wait_for_ticks(window, [1, 1, 1])
        window.press("Up", "Up", "space", "Right", "Right", "space", "Left", "Left")  # one folder of the first year only
        self.wait_for_ticks(window, [2, 1, 1])

    def wait_for_ticks(self, window, ticks):
        for row, tick in enumerate(ticks, 1):
            window.wait_for_part(f"treeRow{row}", lambda part: part["tick"] == tick)

    def archive(self, window):
        window.tab_to("chooseLocationButton")  # the picker is the system's; a place at one press is in the sheet
        window.press("ctrl+4")
        window.wait_for_part("messageView", lambda view: view["focus"] and view["showsFocus"])
        window.press("Home", "shift+Down", "shift+Down", "shift+Down")
        window.tab_to("openInMail")
        window.press_to("archiveButton", "Right")
        window.press("Return")
        window.wait_for_part("startArchiveButton", lambda button: not button["enabled"])
        window.tab_to("destinationCard0")
        window.press("space")
        window.wait_for_part("startArchiveButton", lambda button: button["enabled"])
        way = window.tab_to("candidateList")
        self.assertIn("minimumSize", way)
        window.wait_for_part("candidateList", lambda list: list["count"] == 4)
        window.press("Home", "shift+Down")
        window.press("space")
        window.wait_for_part("tickedText", lambda text: text["text"] == "已勾选 2 封，共 4 封")
        window.picture(PICTURES / "keys-2-confirm.png")
        window.press("Escape")
        wait_until(lambda: window.part("startArchiveButton") is None, "the sheet to close")
        window.wait_for_focus("archiveButton", shown=True)  # what opened the sheet

        window.press("ctrl+1")
        window.tab_to("changeLocationButton")
        window.press_to("primaryAction", "Right")
        window.press("space")
        window.wait_for_part("startArchiveButton", lambda button: button["enabled"] and button["focus"])
        window.press("Return")
        records = wait_until(self.records, "the archive's index")
        window.wait_for_part("doneButton", lambda button: button["focus"])
        window.picture(PICTURES / "keys-3-result.png")
        window.press("Return")
        wait_until(lambda: window.part("doneButton") is None, "the result to close")
        self.assertGreater(len({record["emlRelativePath"][:4] for record in records}), 1, "several years")

    def mail_list(self, window):
        window.press("ctrl+4", "ctrl+f")
        window.wait_for_focus("mailSearch")
        count = window.wait_for_part("messageView", lambda view: view["count"] > 0)["count"]
        window.press_to("migratedFilter", "Up")
        window.press("Right", "Right")
        window.wait_for_part("messageView", lambda view: 0 < view["count"] < count)
        window.press("Left", "Left")
        window.wait_for_part("messageView", lambda view: view["count"] == count)
        window.tab_to("sortMode")
        window.press("Right")
        window.wait_for_part("sortMode", lambda control: control["currentIndex"] == 1)
        window.tab_to("troubledFilter")
        window.press_to("accountFilter0", "Down")
        window.press("space")
        window.wait_for_part("messageView", lambda view: 0 < view["count"] < count)
        window.press("Down", "Up", "space")
        window.wait_for_part("messageView", lambda view: view["count"] == count)
        window.tab_to("messageView")
        window.press("Home", "Down")
        window.press_to("archiveButton", "Tab")
        window.press_to("moreActions", "Right")
        window.press("Return")
        window.wait_for_part("archiveRow")
        window.press("Escape")
        window.wait_for_part("moreActions", lambda button: button["focus"] and button["showsFocus"])
        window.tab_to("messageScroller")
        window.wait_for_part("detailPreview")
        window.press_to("detailPreview", "Down")
        window.press("space", "shift+space")
        window.picture(PICTURES / "keys-4-detail.png")
        window.press_to("messageView", "shift+Tab")
        window.press("Menu")
        window.wait_for_part("archiveRow")
        window.press("Escape")
        window.wait_for_part("messageView", lambda view: view["focus"] and view["showsFocus"])
        window.move(0, 0)  # a pointer that rests over the menu has its say
        window.press("shift+F10")
        window.wait_for_part("archiveRow")
        window.press(*["Down"] * 6)
        window.wait_for_part("copySubjectRow", lambda row: row["focus"])
        window.press("Return")
        window.wait_for_part("messageView", lambda view: view["focus"])
        window.wait_for_clipboard(lambda text: text == window.part("detailSubject")["text"])


if __name__ == "__main__":
    unittest.main()
