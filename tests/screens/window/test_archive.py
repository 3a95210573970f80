"""The road of a first archive, as a person walks it: update, tick a year, choose a place, archive, see what is left."""

import unittest

from window_case import PICTURES, WindowCase
from window_driver import wait_until


def tree_of(folder):
    return {path.relative_to(folder): (path.stat().st_size, path.stat().st_mtime_ns)
            for path in sorted(folder.rglob("*")) if path.is_file()}


class ArchiveWalk(WindowCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        (cls.home / "Documents").mkdir()

    def test_first_archive(self):
        mail_before = tree_of(self.home / "Library/Mail")
        with self.display.window(self.home) as window:
            window.picture(PICTURES / "walk-1-first.png")
            window.click_part("emptyStateButton")
            wait_until((self.home / ".local/share/Corvane/home-scan-snapshot.json").exists, "the end of the scan")
            window.settled(1.5)
            window.picture(PICTURES / "walk-2-list.png")

            window.click_part("chooseLocationButton")
            window.settled()
            window.click_part("folder0")  # Documents, the first of the home
            window.picture(PICTURES / "walk-3-place.png")
            window.click_part("useFolderButton")
            window.settled(1.0)

            window.click_part("treeRow1/tickBox")
            window.settled()
            window.click_part("primaryAction")
            window.picture(PICTURES / "walk-4-confirm.png")
            window.click_part("destinationCard0")  # the cloud folder instead
            window.picture(PICTURES / "walk-5-cloud.png")
            window.press("Return")
            records = wait_until(self.records, "the archive's index")
            window.settled(1.5)
            window.picture(PICTURES / "walk-6-result.png")
            window.press("Return")
            window.settled(1.5)
            window.picture(PICTURES / "walk-7-left.png")
            status, said = window.quit()
            self.assertEqual(status, 0, said)
            for trouble in ("QML", "qrc:", "TypeError"):
                self.assertNotIn(trouble, said)
        self.assertEqual(len({record["accountIdentifier"] for record in records}), 1, "one year of one account")
        for record in records:
            self.assertTrue((self.root / record["emlRelativePath"]).is_file())
        self.assertEqual(list((self.home / "Documents").iterdir()), [], "the place that was given up")
        self.assertEqual(tree_of(self.home / "Library/Mail"), mail_before)

        # The next start shows what is left, without a scan.
        with self.display.window(self.home) as window:
            window.settled(1.5)
            window.picture(PICTURES / "walk-8-next-start.png")


if __name__ == "__main__":
    unittest.main()
