"""What keeps an archive whole: verify with hashes, sums, and the way back from a lost index."""

import re
import subprocess
import unittest

from cli_support import CLI, CliCase, archive_state


class ArchiveCare(CliCase):
    def setUp(self):
        super().setUp()
        self.mail = self.home()
        self.run_cli(self.mail, "refresh")
        self.root = self.folder / "archive"
        # Variants are told as an issue.
        self.run_cli(self.mail, "archive", "--to", self.root, "--no-index", expect=3)

    def test_hashes_are_recorded_and_find_a_changed_bit(self):
        recorded = self.run_cli(self.mail, "verify", self.root, "--record")
        self.assertEqual(list(recorded), ["checked", "bytes", "missing", "sizeMismatch", "altered", "unindexed",
                                          "identityMismatch", "duplicatePaths", "unreadable", "unchecked"])
        self.assertEqual(recorded["unchecked"], 0)
        sums = self.run_cli(self.mail, "sums", self.root)["sums"]
        self.assertEqual(len(sums), recorded["checked"])
        lines = subprocess.run([CLI, "sums", self.root], stdout=subprocess.PIPE, check=True).stdout
        check = ["sha256sum", "--status", "-c", "-"]
        self.assertEqual(subprocess.run(check, cwd=self.root, input=lines).returncode, 0)
        victim = self.root / sums[0]["path"]
        content = bytearray(victim.read_bytes())
        content[-1] ^= 1
        victim.write_bytes(content)
        found = self.run_cli(self.mail, "verify", self.root, expect=3)
        self.assertEqual(found["altered"], [sums[0]["path"]])
        self.assertEqual(subprocess.run(check, cwd=self.root, input=lines).returncode, 1)

    def test_an_archive_of_which_only_the_mail_is_left_is_whole_again(self):
        self.run_cli(self.mail, "verify", self.root, "--record")
        files, records = archive_state(self.root)
        (self.root / "archive-index.json").unlink()
        # Mail keeps some messages in part or not at all, and such files have no header.
        known = re.compile(rb"(?im)^(message-id|from|to|subject|date):")
        headless = {path for path, content in files.items()
                    if not known.search(re.split(rb"\r?\n\r?\n", content, maxsplit=1)[0])}
        seen = self.run_cli(self.mail, "rebuild", self.root, "--dry-run", expect=3)
        self.assertFalse((self.root / "archive-index.json").exists())
        self.assertEqual(self.run_cli(self.mail, "rebuild", self.root, expect=3), seen)
        self.assertEqual(seen["adopted"], len(files) - len(headless))
        self.assertEqual({failure["path"] for failure in seen["failures"]}, headless)
        files_after, rebuilt = archive_state(self.root)
        self.assertEqual(files_after, files)
        by_path = {record["emlRelativePath"]: record for record in rebuilt.values()}
        for record in records.values():
            path = record["emlRelativePath"]
            if path in headless:
                continue
            self.assertEqual(by_path[path]["contentHash"], record["contentHash"])
            header = re.search(rb"(?im)^message-id:\s*<([^>\r\n]*)>", files[path])
            written = header.group(1).decode().lower() if header else None
            # Mail's index may lack an id that the header has; a header that is cut may lack one that Mail has.
            if written == record.get("messageIdentifier"):
                self.assertEqual(by_path[path]["id"], record["id"])


if __name__ == "__main__":
    unittest.main()
