"""The main job from a home to a verified archive, compared with what the maker of the store knows."""

import collections
import datetime
import hashlib
import json
import os
import random
import time
import unicodedata
import unittest
import urllib.parse

from cli_support import SETTINGS, SUPPORT, CliCase, archive_state, signal, tree_state


def composed(names):
    """The disk may spell a name in another normal form than the index."""
    return {unicodedata.normalize("NFC", name) for name in names}


def person(name, address):
    name = name.strip()
    return f"{name} <{address}>" if name and address else name or address


def moment(seconds):
    return datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")


def is_whole(emlx):
    """Whether every byte that the first line announces is there, and not all of them are zero."""
    count, _, rest = emlx.partition(b"\n")
    return int(count) <= len(rest) and any(rest[:int(count)])


def by_row(messages):
    return {int(message["fileURL"].rsplit("/", 1)[1].split(".")[0]): message for message in messages}


class MainRoad(CliCase):
    def test_scan_lists_what_the_store_holds(self):
        home = self.home()
        before = tree_state(home / "Library")
        manifest = self.manifest(home)
        result = self.run_cli(home, "refresh")
        self.assertEqual(result["state"], "finished")
        self.assertEqual(result["summary"]["scannedMessages"], manifest["counts"]["local"])
        messages = by_row(self.run_cli(home, "messages"))
        self.assertEqual(len(messages), manifest["counts"]["distinctLocal"])
        expected = {entry["rowid"]: entry for entry in manifest["messages"]}
        for row, message in messages.items():
            entry = expected[row]
            self.assertEqual(message["subject"], entry["subject"] or "无主题", row)
            self.assertEqual(message["sender"], person(entry["senderName"], entry["senderAddress"]) or "发件人未知", row)
            self.assertEqual(message["recipients"],
                             ", ".join(person(each["name"], each["address"]) for each in entry["recipients"]), row)
            self.assertEqual(message["date"], moment(entry["date"]), row)
            self.assertEqual(message.get("messageIdentifier"), entry["messageId"], row)
            names = {attachment["fileName"] for attachment in message["attachments"]}
            if entry["attachmentNames"] is not None:
                self.assertEqual(composed(names), composed(entry["attachmentNames"]), row)
            if entry["size"]:
                self.assertEqual(message["messageSize"], entry["size"], row)
        self.assertEqual(tree_state(home / "Library"), before, "Mail's store is never written")

    def test_previews_of_scanned_messages_are_readable(self):
        home = self.home("home", "--messages", "60")
        self.run_cli(home, "refresh")
        for message in self.run_cli(home, "messages")[:5]:
            path = urllib.parse.unquote(message["fileURL"].removeprefix("file://"))
            for environment in ({}, {"CORVANE_PYTHON": "/usr/bin/false"}):
                preview = self.run_cli(home, "preview", path, environment=environment)["preview"]
                self.assertTrue(preview.strip())
                self.assertNotIn("Content-Type:", preview)
        missing = self.run_cli(home, "preview", home / "missing.emlx", expect=1)["error"]
        self.assertIn("读取邮件文件失败", missing)

    def test_accounts_have_their_addresses(self):
        home = self.home()
        wanted = {a["uuid"]: a for a in self.manifest(home)["accounts"]}
        accounts = self.run_cli(home, "accounts")
        found = {account["urlPrefix"].removeprefix("imap://"): account for account in accounts}
        with_mail = {uuid for uuid, account in wanted.items() if account["messages"] > 0}
        self.assertEqual(set(found), with_mail)
        for uuid, account in found.items():
            entry = wanted[uuid]
            self.assertEqual((account["scheme"], account["isLocalStore"], "duplicationNote" in account),
                             (entry["scheme"], entry["scheme"] == "local", entry["redundant"]), entry["key"])
            if entry["address"]:
                self.assertEqual(account["emailAddress"], entry["address"])
            self.assertEqual(account.get("linkedAccountEmail"), entry["linkedAddress"], entry["key"])

    def test_every_archived_byte_and_record_is_right_and_a_second_run_changes_nothing(self):
        home = self.home()
        before = tree_state(home / "Library")
        manifest = self.manifest(home)
        self.run_cli(home, "refresh")
        archive = self.folder / "archive"
        result = self.run_cli(home, "archive", "--to", archive, expect=3)
        messages = {entry["file"]: entry for entry in manifest["messages"] if entry["file"]}
        files, records = archive_state(archive)
        self.assertEqual(result["archivedCount"], len(records))
        self.assertEqual(set(files), {record["emlRelativePath"] for record in records.values()})
        sums = collections.defaultdict(set)
        for entry in messages.values():
            sums[entry["messageId"]].add(entry["messageSha256"] if entry["local"] else None)
        variants = collections.Counter()
        for record in records.values():
            content = files[record["emlRelativePath"]]
            identifier = record.get("messageIdentifier")
            self.assertIn(hashlib.sha256(content).hexdigest(), sums[identifier], record["id"])
            self.assertEqual(record["sizeBytes"], len(content))
            variants[identifier] += "#v" in record["id"]
        identifiers = {entry["rowid"]: entry["messageId"] for entry in messages.values()}
        self.assertEqual(+variants, {identifiers[rows[0][0]]: len(rows) for rows in manifest["variants"]})
        self.assertEqual(len(result["variantWarnings"]), len(manifest["variants"]))
        broken = {str(home / entry["file"]) for entry in messages.values()
                  if entry["messageSha256"] is None or not is_whole((home / entry["file"]).read_bytes())}
        self.assertLessEqual({failure["messageFilePath"] for failure in result["failures"]}, broken)
        state = archive_state(archive)
        proven = self.run_cli(home, "prove", expect=3)["proven"]
        stats = self.run_cli(home, "stats")
        candidates = stats["candidates"]["count"]
        self.assertEqual(stats["deletionSafety"]["archived"], proven)
        again = self.run_cli(home, "archive", "--to", archive, expect=3 if candidates else 0)
        self.assertEqual((again["archivedCount"], again["failedCount"]), (0, candidates))
        self.assertEqual(archive_state(archive), state)
        report = self.run_cli(home, "verify", archive)
        self.assertEqual((report["missing"], report["sizeMismatch"], report["unindexed"], report["duplicatePaths"]),
                         ([], [], [], []))
        self.assertEqual(tree_state(home / "Library"), before, "Mail's store is never written")

    def test_year_counts_follow_the_time_zone(self):
        home = self.home()
        manifest = self.manifest(home)
        self.run_cli(home, "refresh", environment={"TZ": "UTC"})
        stats = self.run_cli(home, "stats", environment={"TZ": "UTC"})
        self.assertEqual(stats["indexedYearCounts"], manifest["yearsUtc"])
        kiritimati = self.run_cli(home, "stats", environment={"TZ": "Pacific/Kiritimati"})
        self.assertEqual(sum(kiritimati["indexedYearCounts"].values()), sum(manifest["yearsUtc"].values()))


class Interruptions(CliCase):
    def setUp(self):
        super().setUp()
        self.mail = self.home("home", "--no-odd", "--messages", "500")
        self.run_cli(self.mail, "refresh")
        self.whole = self.folder / "whole"
        self.run_cli(self.mail, "archive", "--to", self.whole)
        self.run_cli(self.mail, "refresh")

    def fresh_home(self, number):
        """The scan's cache without the memory of an archive."""
        for name in ("archive-library-snapshot.json", "index-cache"):
            path = self.mail / SUPPORT / name
            if path.is_file():
                path.unlink()
        (self.mail / SETTINGS).unlink(missing_ok=True)
        return self.folder / f"killed-{number}"

    def test_a_killed_run_is_healed_by_the_next_one(self):
        random.seed(4)
        for number in range(8):
            archive = self.fresh_home(number)
            for _ in range(2):
                run = self.start_cli(self.mail, "archive", "--to", archive)
                time.sleep(random.uniform(0.02, 0.35))
                run.send_signal(signal.SIGKILL)
                run.communicate()
            self.run_cli(self.mail, "archive", "--to", archive)
            self.assertEqual(archive_state(archive), archive_state(self.whole))
            report = self.run_cli(self.mail, "verify", archive)
            self.assertEqual((report["missing"], report["unindexed"], report["sizeMismatch"]), ([], [], []))

    def test_an_interrupted_run_keeps_what_it_did(self):
        archive = self.fresh_home("interrupted")
        run = self.start_cli(self.mail, "archive", "--to", archive)
        while not list(archive.rglob("*.eml")) and run.poll() is None:
            os.sched_yield()
        run.send_signal(signal.SIGINT)
        output, _ = run.communicate(timeout=60)
        if run.returncode == 0:
            self.skipTest("the run was over before the signal")
        self.assertEqual(run.returncode, 130)
        result = json.loads(output)
        self.assertTrue(result["wasCancelled"])
        report = self.run_cli(self.mail, "verify", archive)
        self.assertEqual((report["checked"], report["unindexed"]), (result["archivedCount"], []))

    def test_a_broken_index_or_a_place_that_takes_nothing_is_told(self):
        archive = self.fresh_home("broken")
        self.run_cli(self.mail, "archive", "--to", archive)
        (archive / "archive-index.json").write_text("{")
        self.fresh_home("again")
        result = self.run_cli(self.mail, "archive", "--to", archive)
        self.assertEqual(result["archivedCount"], 0)
        kept = [path.name for path in archive.glob(".archive-index-damaged-*")]
        self.assertEqual([name in warning for name, warning in zip(kept, result["archiveWarnings"])], [True])
        self.assertEqual(archive_state(archive), archive_state(self.whole))
        blocked = self.folder / "file"
        blocked.write_text("a file where a folder should be")
        self.fresh_home("blocked")
        failure = self.run_cli(self.mail, "archive", "--to", blocked / "archive", expect=1)
        self.assertIn("error", failure)
        self.fresh_home("full")
        failure = self.run_cli(self.mail, "archive", "--to", "/proc/corvane", expect=1)
        self.assertIn("error", failure)


if __name__ == "__main__":
    unittest.main()
