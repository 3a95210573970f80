"""The frame of the window: start and end, one window a home, keys, size, samples for a newcomer."""

import os
import pathlib
import signal
import subprocess
import tempfile
import unittest

from window_case import PICTURES, WindowCase
from window_driver import PATIENCE, ROOT, said_by, wait_until


class FrameTest(WindowCase):
    def support(self, home=None):
        return (home or self.home) / ".local/share/Corvane"

    def test_starts_paints_and_ends_when_asked(self):
        for appearance in ("light", "dark"):
            with self.display.window(self.home, appearance=appearance) as window:
                window.picture(PICTURES / f"start-{appearance}.png")
                self.assert_quiet_end(window)

    def test_logs_tell_of_this_start_only(self):
        old = "a line of the last start\n"
        self.support().mkdir(parents=True, exist_ok=True)
        for name in ("performance.log", "archive-library-startup.log"):
            (self.support() / name).write_text(old)
        with self.display.window(self.home):
            log = self.support() / "archive-library-startup.log"
            wait_until(lambda: "ContentView onAppear" in log.read_text(), "the start-up work")
        marks = log.read_text()
        places = [marks.find(mark) for mark in ("applicationWillFinishLaunching reset logs", "viewModel init start",
                                                "viewModel init finish", "ContentView onAppear mode=")]
        self.assertNotIn(-1, places)
        self.assertEqual(places, sorted(places))
        self.assertNotIn(old, marks + (self.support() / "performance.log").read_text())

    def test_home_that_cannot_be_written_is_told_in_a_window_until_it_can(self):
        home = self.home.parent / "blocked"
        self.support(home).parent.mkdir(parents=True)
        self.support(home).write_text("a file where the folder should be")
        with self.display.window(home) as window:
            self.assertIn(str(self.support(home)), window.wait_for_part("blockedStartLine")["text"])
            window.picture(PICTURES / "blocked-start.png")
            self.support(home).unlink()
            window.click_part("retryStartButton")
            wait_until(lambda: window.part("sidebar"), "the window itself")

    def test_settings_that_cannot_be_read_are_told_of(self):
        home = self.home.parent / "damaged"
        settings = home / ".config/Corvane.conf"
        settings.parent.mkdir(parents=True)
        settings.write_text("{broken")
        with self.display.window(home) as window:
            window.wait_for_part("settingsNoticeButton")
            window.picture(PICTURES / "damaged-settings.png")
            window.click_part("settingsNoticeButton")
            wait_until(lambda: not window.part("settingsNotice"), "the notice to go")
        self.assertIn("{broken", [file.read_text() for file in settings.parent.iterdir()])

    def test_start_beside_a_silent_window_says_so(self):
        with self.display.window(self.home) as first:
            first.process.send_signal(signal.SIGSTOP)
            try:
                with self.display.window(self.home) as second:
                    line = second.wait_for_part("blockedStartLine")["text"]
                    self.assertIn(str(first.process.pid), line)
                    second.wait_for_part("leaveButton", lambda button: button["focus"])
                    second.picture(PICTURES / "blocked-start.png")
                    second.press_to("retryStartButton", "Left")
                    second.press("Return")
                    second.wait_for_part("retryStartButton", lambda button: button["text"] == "重试")
                    self.assertEqual(second.part("blockedStartLine")["text"], line)
                    second.press("Escape")
                    self.assertEqual(second.process.wait(timeout=PATIENCE), 4, said_by(second.process))
                with self.display.window(self.home) as third:
                    third.click_part("retryStartButton")
                    first.process.send_signal(signal.SIGCONT)
                    self.assertEqual(third.process.wait(timeout=PATIENCE), 0, said_by(third.process))
            finally:
                first.process.send_signal(signal.SIGCONT)
            self.assertIsNone(first.process.poll())

    def test_start_beside_a_silent_window_goes_on_when_that_is_gone(self):
        with self.display.window(self.home) as first:
            first.process.send_signal(signal.SIGSTOP)
            with self.display.window(self.home) as second:
                second.wait_for_part("retryStartButton")
                first.process.send_signal(signal.SIGKILL)
                first.process.wait()
                second.press_to("retryStartButton", "Left")
                second.press("space")
                second.wait_for_part("place-home")
                self.assertEqual(second.quit()[0], 0)

    def test_window_comes_back_as_it_was_left(self):
        with self.display.window(self.home) as window:
            window.resize(1100, 640)
            wait_until(lambda: window.part("sidebar")["height"] == 640, "the window's new size")
            left = window.geometry()
            window.quit()
        with self.display.window(self.home) as window:
            self.assertEqual(window.geometry(), left)
            window.resize(300, 200)
            window.settled()
            # No window manager keeps the minimum here; the content must bear it.
            self.assertIsNone(window.process.poll())

    def test_newcomer_gets_samples(self):
        with tempfile.TemporaryDirectory() as empty, self.display.window(empty) as window:
            window.picture(PICTURES / "newcomer.png")
            maker = self.support(pathlib.Path(empty)) / "sample-home"
            window.click_part("sampleButton")
            wait_until(lambda: (maker / ".local/share/Corvane/window.lock").exists(), "the window over the samples")
            window.id = wait_until(window._find, "the window over the samples")
            window.wait_for_picture()
            window.picture(PICTURES / "samples.png")
            self.assertEqual(window.quit()[0], 0)

    def test_wrong_use_is_said(self):
        for arguments in (["--home", "/no/such/folder"], ["--appearance", "purple"], ["--nonsense"]):
            run = subprocess.run([os.environ.get("CORVANE_WINDOW", str(ROOT / "build/dev/bin/corvane")), *arguments],
                                 env=self.display.environment, capture_output=True, text=True, timeout=PATIENCE)
            self.assertNotEqual(run.returncode, 0)
            self.assertTrue(run.stderr or run.stdout)


if __name__ == "__main__":
    unittest.main()
