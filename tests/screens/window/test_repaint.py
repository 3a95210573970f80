"""Lists are painted over piece by piece: what is on the screen is what would be painted anew, wherever a list is scrolled
to when its rows are replaced."""

import unittest

from window_case import PICTURES, WindowCase


class Repaint(WindowCase):
    messages = 2500

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.refresh()

    def rows(self, part):
        """The pixels of a part, a caret that blinks elsewhere left out."""
        pixels, row_size = self.display.pixels()
        left, right = 4 * round(part["x"]), 4 * round(part["x"] + part["width"])
        top, bottom = round(part["y"]), round(part["y"] + part["height"])
        return [pixels[row_size * y + left:row_size * y + right] for y in range(top, bottom)]

    def assert_painted_well(self, window, name, part):
        window.settled()
        painted = self.rows(window.part(part))
        window.resize(1239, 840)
        window.settled()
        window.resize(1240, 840)
        window.settled()
        anew = self.rows(window.part(part))
        different = [line for line, (before, after) in enumerate(zip(painted, anew)) if before != after]
        if different:
            window.picture(PICTURES / f"repaint-{name}-anew.png")
        self.assertEqual(different, [], f"lines of {part} after {name}")

    def test_rows_that_are_replaced_leave_nothing_behind(self):
        with self.display.window(self.home) as window:
            window.wait_for_part("organizeTree", lambda tree: tree["count"] > 3)
            window.press("ctrl+4")
            window.wait_for_part("messageView", lambda view: view["count"] > 100 and view["focus"])
            window.move(640, 300)
            for wheel in range(7):
                self.display.run("xdotool", "click", "5")
            self.assert_painted_well(window, "wheel", "messageView")
            for text in ("harbour", "very-long", "预"):
                window.press("ctrl+f")
                window.type(text)
                self.assert_painted_well(window, f"search-{len(text)}", "messageView")
                window.press("Escape")
                window.settled()
                for wheel in range(5):
                    self.display.run("xdotool", "click", "5")
                self.assert_painted_well(window, f"back-{len(text)}", "messageView")
            window.press("ctrl+1")
            window.move(800, 600)
            for wheel in range(3):
                self.display.run("xdotool", "click", "5")
            window.press("Left", "Right", "Down", "Right")
            self.assert_painted_well(window, "tree", "organizeTree")


if __name__ == "__main__":
    unittest.main()
