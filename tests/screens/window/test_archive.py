"""The road of a first archive, as a person walks it: update, tick a year, choose a place, archive, see what is left,
read an archived mail and remove it."""

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
            window.wait_for_part("organizeTree", lambda tree: tree["count"] > 3)
            window.picture(PICTURES / "walk-2-list.png")

            window.click_part("chooseLocationButton")
            window.click_part("folder0")  # Documents, the first of the home
            window.wait_for_part("useFolderButton", lambda button: button["text"] == "使用此位置")
            window.picture(PICTURES / "walk-3-place.png")
            window.click_part("useFolderButton")
            wait_until(lambda: window.part("useFolderButton") is None, "the picker to close")

            window.click_part("treeRow1/tickBox")
            window.wait_for_part("treeRow1", lambda row: row["tick"] == 1)
            window.click_part("primaryAction")
            window.wait_for_part("startArchiveButton", lambda button: button["enabled"])
            window.picture(PICTURES / "walk-4-confirm.png")
            window.click_part("destinationCard0")  # the cloud folder instead
            window.wait_for_part("startArchiveButton", lambda button: button["enabled"])
            window.picture(PICTURES / "walk-5-cloud.png")
            window.press("Return")
            records = wait_until(self.records, "the archive's index")
            window.wait_for_part("doneButton", lambda button: button["focus"])
            window.picture(PICTURES / "walk-6-result.png")
            window.press("Return")
            wait_until(lambda: window.part("doneButton") is None, "the result to close")
            window.picture(PICTURES / "walk-7-left.png")
            records = self.remove_one(window, records)
            self.assert_quiet_end(window)
        self.assertEqual(len({record["accountIdentifier"] for record in records}), 1, "one year of one account")
        for record in records:
            self.assertTrue((self.root / record["emlRelativePath"]).is_file())
        left = {path.name for path in (self.home / "Documents").iterdir()}
        self.assertLessEqual(left, {"app-backup.json"}, "the place that was given up")
        self.assertEqual(tree_of(self.home / "Library/Mail"), mail_before)

        self.assert_verified(len(records))

        # The next start shows what is left, without a scan.
        with self.display.window(self.home) as window:
            window.wait_for_part("organizeTree", lambda tree: tree["count"] > 3)
            window.picture(PICTURES / "walk-10-next-start.png")

    def remove_one(self, window, records):
        """Reads the newest archived mail and removes it; the records that are left."""
        window.press("ctrl+3")
        window.wait_for_part("libraryView", lambda view: view["count"] > 0 and view["focus"])
        window.wait_for_part("archivedBody", lambda body: body["text"].strip())
        window.picture(PICTURES / "walk-8-library.png")
        window.press("Delete")
        window.wait_for_part("removalCancel", lambda button: button["focus"])
        self.assertFalse(window.part("removalAccept")["enabled"], "it may be the only copy")
        window.click_part("onlyCopyTick")
        window.wait_for_part("removalAccept", lambda button: button["enabled"])
        window.picture(PICTURES / "walk-9-remove.png")
        window.click_part("removalAccept")
        wait_until(lambda: window.part("removalAccept") is None, "the removal")
        self.assertEqual(len(self.records()), len(records) - 1)
        window.wait_for_part("libraryView", lambda view: view["focus"])
        return self.records()


if __name__ == "__main__":
    unittest.main()
