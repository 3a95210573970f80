"""What prove says of originals and archived files, and what follows from it for figures and candidates."""

import json
import os
import pathlib
import unittest
import urllib.parse

from cli_support import SUPPORT, CliCase, signal


class Prove(CliCase):
    def setUp(self):
        super().setUp()
        self.home_path = self.home("home", "--messages", "80")
        self.archive = self.folder / "archive"
        self.run_cli(self.home_path, "refresh")
        self.run_cli(self.home_path, "archive", "--to", self.archive, "--no-index", expect=None)

    def run_cli(self, home, *arguments, expect=0, **options):
        """An archive run over odd mail may have issues."""
        if expect is None:
            process = self.start_cli(home, *arguments)
            output, _ = process.communicate(timeout=120)
            self.assertIn(process.returncode, (0, 3))
            return json.loads(output)
        return super().run_cli(home, *arguments, expect=expect, **options)

    def test_nothing_is_deletable_that_was_not_compared_and_found_equal(self):
        first = self.run_cli(self.home_path, "prove", expect=None)
        unproven = {message["id"]: message for message in first["messages"]}
        self.assertEqual(first["differs"] + first["fileMissing"] + first["notLookedAt"], 0)
        stats = self.run_cli(self.home_path, "stats")
        self.assertEqual(stats["deletionSafety"]["archived"], first["proven"])
        before = stats["candidates"]["count"]

        messages = self.run_cli(self.home_path, "messages")
        records = json.loads((self.archive / "archive-index.json").read_text(encoding="utf-8"))["records"]
        single = {record["messageIdentifier"] for record in records
                  if "#v" not in record["id"] and "messageIdentifier" in record}
        whole = [m for m in messages if m["id"] not in unproven and m.get("messageIdentifier") in single
                 and not m.get("relatedMessageFileURLs")]
        others = {m["messageIdentifier"] for m in whole[1:]}
        whole = whole[0]
        original = pathlib.Path(urllib.parse.unquote(whole["fileURL"].removeprefix("file://")))
        content = bytearray(original.read_bytes())
        start = content.index(b"\n") + 1
        content[start + int(content[:start]) - 1] ^= 1
        original.write_bytes(content)
        damaged, gone = [self.archive / record["emlRelativePath"] for record in records
                         if record.get("messageIdentifier") in others][:2]
        damaged.write_bytes(damaged.read_bytes()[:-1] + b"\x00")
        gone.unlink()
        second = self.run_cli(self.home_path, "prove", expect=3)
        self.assertEqual(second["fileMissing"] + second["differs"] + second["incomplete"] - first["incomplete"], 3)
        self.assertEqual(second["proven"], first["proven"] - 3)
        named = {message.get("path") for message in second["messages"]}
        self.assertIn(str(gone), named)
        stats = self.run_cli(self.home_path, "stats")
        self.assertEqual(stats["deletionSafety"]["archived"], second["proven"])
        self.assertGreaterEqual(stats["candidates"]["count"], before + 2)

    def test_verify_takes_back_what_rests_on_an_altered_file_and_a_run_writes_it_again(self):
        first = self.run_cli(self.home_path, "prove", expect=None)
        records = json.loads((self.archive / "archive-index.json").read_text(encoding="utf-8"))["records"]
        record = next(r for r in records if "#v" not in r["id"] and not r["emlRelativePath"].count("（"))
        damaged = self.archive / record["emlRelativePath"]
        sound, status = damaged.read_bytes(), damaged.stat()
        damaged.write_bytes(sound[:-1] + bytes([sound[-1] ^ 1]))
        os.utime(damaged, ns=(status.st_atime_ns, status.st_mtime_ns))
        link = self.home_path.parent / "archive by another name"
        link.symlink_to(self.archive)
        verified = self.run_cli(self.home_path, "verify", link, expect=3)
        self.assertEqual(verified["altered"], [record["emlRelativePath"]])
        second = self.run_cli(self.home_path, "prove", expect=3)
        self.assertEqual((second["fileMissing"], second["proven"]), (first["fileMissing"] + 1, first["proven"] - 1))

        self.run_cli(self.home_path, "archive", "--to", self.archive, "--no-index", expect=None)
        self.assertEqual(damaged.read_bytes(), sound)
        aside = [path.read_bytes() for path in damaged.parent.glob("*（原有文件）*")]
        self.assertIn(sound[:-1] + bytes([sound[-1] ^ 1]), aside)
        self.assertEqual(self.run_cli(self.home_path, "stats")["deletionSafety"]["archived"], first["proven"])
        self.assertEqual(self.run_cli(self.home_path, "prove", expect=None)["proven"], first["proven"])

    def test_an_original_altered_behind_its_size_and_time_is_read_again(self):
        first = self.run_cli(self.home_path, "prove", expect=None)
        against = {message["id"] for message in first["messages"]}
        message = next(m for m in self.run_cli(self.home_path, "messages", "--filter", "onlyMigrated")
                       if m["id"] not in against and not m.get("relatedMessageFileURLs"))
        original = pathlib.Path(urllib.parse.unquote(message["fileURL"].removeprefix("file://")))
        content, status = bytearray(original.read_bytes()), original.stat()
        start = content.index(b"\n") + 1
        content[start + int(content[:start]) - 1] ^= 1
        original.write_bytes(content)
        os.utime(original, ns=(status.st_atime_ns, status.st_mtime_ns))
        second = self.run_cli(self.home_path, "prove", expect=3)
        self.assertEqual((second["differs"], second["proven"]), (first["differs"] + 1, first["proven"] - 1))

    def test_the_scope_limits_what_is_read_and_counted(self):
        years = {m["date"][:4] for m in self.run_cli(self.home_path, "messages") if "date" in m}
        whole = self.run_cli(self.home_path, "prove", "--year", "1", expect=0)
        self.assertEqual(sum(value for value in whole.values() if isinstance(value, int)), 0)
        counted = sum(self.run_cli(self.home_path, "prove", "--year", year, expect=None)["proven"]
                      for year in sorted(years))
        self.assertEqual(self.run_cli(self.home_path, "prove", expect=None)["proven"], counted)
        (self.home_path / SUPPORT / "last-scan-cache.json").unlink()
        self.assertEqual(self.run_cli(self.home_path, "prove", expect=3)["proven"], 0, "nothing is known of any mail")

    def test_an_interrupted_proof_answers_with_what_it_has(self):
        process = self.start_cli(self.home_path, "prove")
        process.send_signal(signal.SIGINT)
        output, _ = process.communicate(timeout=60)
        self.assertIn(process.returncode, (0, 3, 130, -signal.SIGINT))
        if process.returncode == 130 and output:
            self.assertIn("proven", json.loads(output))


if __name__ == "__main__":
    unittest.main()
