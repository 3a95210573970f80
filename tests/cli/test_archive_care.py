"""What keeps an archive whole: verify with hashes, sums, and the way back from a lost index."""

import os
import shutil
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
        program = ["sha256sum"] if shutil.which("sha256sum") else ["shasum", "-a", "256"]
        check = [*program, "--status", "-c", "-"]
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
        seen = self.run_cli(self.mail, "rebuild", self.root, "--dry-run")
        self.assertFalse((self.root / "archive-index.json").exists())
        self.assertEqual(self.run_cli(self.mail, "rebuild", self.root), seen)
        self.assertEqual(seen["adopted"], len(files))
        files_after, rebuilt = archive_state(self.root)
        self.assertEqual(files_after, files)
        # Neither stands in the mail, and Mail has it in other words than the header.
        unknown = ("sourceCopyCount", "ccRecipients")
        self.assertEqual([{key: record.get(key) for key in record if key not in unknown} for record in
                          sorted(rebuilt.values(), key=lambda record: record["emlRelativePath"])],
                         [{key: record.get(key) for key in record if key not in unknown} for record in
                          sorted(records.values(), key=lambda record: record["emlRelativePath"])])
        # On another machine, where the mail alone can tell.
        (self.root / "archive-index.json").unlink()
        elsewhere = self.folder / "elsewhere"
        elsewhere.mkdir()
        self.assertEqual(len(self.run_cli(elsewhere, "rebuild", self.root, expect=3)["failures"]), 1)
        names, alone = ({record["emlRelativePath"]: record["attachmentNames"] for record in each.values()}
                        for each in (records, archive_state(self.root)[1]))
        # Mail's index has some names in other words, and those of files that a copy lacks.
        others = {path: (names[path], found) for path, found in alone.items() if found != names[path]}
        self.assertLess(len(others), 10, others)
        self.assertEqual([path for path, found in alone.items() if names[path] and not found], [])
        self.assertGreater(sum(map(bool, alone.values())), 50)
        # There the first worker dies: the next mail has its own.
        (self.root / "archive-index.json").unlink()
        python = self.folder / "python"
        python.write_text(f"#!/bin/sh\nmkdir '{self.folder}/began' 2>&- && exit 1\nexec python3 \"$@\"\n")
        python.chmod(0o700)
        told = subprocess.run([CLI, "--home", elsewhere, "rebuild", self.root], capture_output=True, text=True,
                              env={**os.environ, "CORVANE_PYTHON": str(python)})
        self.assertIn("1 封邮件的附件名称没能读出，附件仍在邮件里。", told.stderr)
        unlike = [record for record in archive_state(self.root)[1].values()
                  if record["attachmentNames"] != alone[record["emlRelativePath"]]]
        self.assertLessEqual(len(unlike), 1)


if __name__ == "__main__":
    unittest.main()
