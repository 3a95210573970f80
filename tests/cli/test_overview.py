"""The overview of archived mail, its guide and its groups, against figures that are computed here from the mail, the
store's index and the outcomes of a proof."""

import collections
import datetime
import json
import re
import shutil
import sqlite3
import subprocess
import unittest
from urllib.parse import unquote

from cli_support import CLI, INDEX, CliCase

YEAR_ORDER = ["serverUnbacked", "incomplete", "pendingReview", "cleanable", "completed"]
TRASH = ("Deleted Messages", "Junk", "已删除邮件", "垃圾邮件", "Deleted Items", "Junk E-mail")


def year_of(date):
    return datetime.datetime.fromisoformat(date.replace("Z", "+00:00")).astimezone().year


def sums(entries):
    return {"count": len(entries), "bytes": sum(entry["sizeBytes"] for entry in entries)}


class Overview(CliCase):
    def setUp(self):
        super().setUp()
        self.mail = self.home("home", "--no-odd", "--messages", "160", "--server-only", "3")
        self.archive = self.folder / "archive"
        self.run_cli(self.mail, "refresh")
        self.run_cli(self.mail, "archive", "--to", self.archive, "--no-index")

    def ask_store(self, *statements):
        """The rows of the last one."""
        store = sqlite3.connect(self.mail / INDEX)
        for statement, *values in statements:
            rows = store.execute(statement, values).fetchall()
        store.commit()
        store.close()
        return rows

    def live_identifiers(self):
        rows = self.ask_store(("SELECT b.url, g.message_id_header FROM messages m JOIN mailboxes b ON b.ROWID = m.mailbox "
                               "JOIN message_global_data g ON g.message_id = m.message_id",))
        return {header.strip("<> ").lower() for url, header in rows if header and not unquote(url).endswith(TRASH)}

    def rows_of(self, entry):
        rows = self.ask_store(("SELECT m.ROWID FROM messages m JOIN message_global_data g ON g.message_id = m.message_id "
                               "WHERE lower(trim(g.message_id_header, '<>')) = ?", entry["messageIdentifier"]))
        return [row for row, in rows]

    def library(self, *options):
        """The entries with the fields of their records."""
        return [{**entry.pop("record"), **entry} for entry in self.run_cli(self.mail, "library", *options)]

    def facts(self):
        """Archived mail with what is known of its originals, and the accounts behind each key."""
        entries = self.library()
        prove = self.start_cli(self.mail, "prove")
        unproven = {message["id"] for message in json.loads(prove.communicate(timeout=120)[0])["messages"]}
        archived = {message["id"] for message in self.run_cli(self.mail, "messages", "--filter", "onlyMigrated")}
        proven = {f"mid:{message['messageIdentifier']}" for message in self.run_cli(self.mail, "messages")
                  if "messageIdentifier" in message and message["id"] in archived - unproven}
        live, accounts = self.live_identifiers(), collections.defaultdict(set)
        for entry in entries:
            entry["proven"] = re.sub(r"#v\d+$", "", entry["id"]) in proven
            known = entry.get("messageIdentifier")
            entry["presence"] = "unknown" if not known else "present" if known in live else "missing"
            accounts[entry["accountKey"]].add(entry.get("accountIdentifier"))
        for account in self.run_cli(self.mail, "accounts"):
            label = account.get("linkedAccountEmail") or account["emailAddress"]
            label += "（Mail 本机归档文件夹）" if account["isLocalStore"] else ""
            accounts["mail-account:" + label.strip().lower()].add(account["urlPrefix"])
        return entries, accounts

    @staticmethod
    def status(entries, unbacked, undownloaded):
        counts = collections.Counter(entry["presence"] for entry in entries)
        if not counts["present"]:
            return "completed" if counts["missing"] else "pendingReview"
        if unbacked:
            return "serverUnbacked" if undownloaded else "incomplete"
        return "cleanable" if all(e["proven"] for e in entries if e["presence"] == "present") else "incomplete"

    def expect_true_overview(self, overview):
        entries, accounts = self.facts()
        stats = self.run_cli(self.mail, "stats")
        unbacked = {(group["accountPrefix"], stat["year"]): stat["messageCount"]
                    for group in stats["unbackedAccountYearStats"] for stat in group["years"]}
        waiting = stats["undownloadedYearCountsByAccount"]
        folders = collections.defaultdict(list)
        for entry in entries:
            if "date" in entry:
                folders[entry["accountKey"], year_of(entry["date"]), entry["mailbox"]].append(entry)
        freeable, statuses = [], collections.Counter()
        self.assertEqual({g["key"]: g["count"] for g in overview["groups"]},
                         collections.Counter(entry["accountKey"] for entry in entries))
        for group in overview["groups"]:
            for year in group["years"]:
                behind = accounts[group["key"]]
                missing = sum(unbacked.get((account, year["year"]), 0) for account in behind)
                remote = sum(waiting.get(account, {}).get(str(year["year"]), 0) for account in behind)
                for folder in year["folders"]:
                    mails = folders.pop((group["key"], year["year"], folder["mailbox"]))
                    self.assertEqual(folder["status"], self.status(mails, missing, remote), folder)
                    self.assertEqual({"count": folder["count"], "bytes": folder["bytes"]}, sums(mails))
                    for presence in ("present", "missing", "unknown"):
                        self.assertEqual(folder[presence], sum(mail["presence"] == presence for mail in mails))
                all_of = [folder["status"] for folder in year["folders"]]
                self.assertEqual(year["status"], min(all_of, key=YEAR_ORDER.index))
                statuses[year["status"]] += 1
                if set(all_of) == {"cleanable"}:
                    freeable += [e for e in entries if (e["accountKey"], e.get("date") and year_of(e["date"])) ==
                                 (group["key"], year["year"]) and e["presence"] == "present" and e["proven"]]
        self.assertEqual(folders, {})
        dated = [entry for entry in entries if "date" in entry]
        self.assertEqual(overview["freeable"], sums(freeable))
        for name, presence in (("removed", "missing"), ("unknown", "unknown")):
            self.assertEqual(overview[name], sums([e for e in dated if e["presence"] == presence]))
        return statuses

    def test_statuses_before_and_after_originals_were_deleted_and_moved_to_the_trash(self):
        unchecked = self.run_cli(self.mail, "overview")
        self.assertEqual((unchecked["presence"], unchecked["freeable"]["count"]), ("unchecked", 0))
        first = self.run_cli(self.mail, "overview", "--check")
        self.assertEqual(first["presence"], "checked")
        self.assertGreater(self.expect_true_overview(first)["cleanable"], 0)

        clean = next((g, y) for g in first["groups"] for y in g["years"] if y["status"] == "cleanable")
        shown = self.run_cli(self.mail, "overview", "--filter", "cleanable")
        self.assertEqual({y["status"] for g in shown["groups"] for y in g["years"]}, {"cleanable"})
        guide = self.run_cli(self.mail, "guide", clean[0]["key"], "--year", clean[1]["year"])
        self.assertEqual(guide["suggestedName"], f"可删除·{clean[1]['year']}")
        self.assertIn(f"{clean[1]['year']} 年 1 月 1 日之后、在 {clean[1]['year'] + 1} 年", guide["conditionText"])
        self.assertEqual(self.run_cli(self.mail, "guide", clean[0]["title"], "--year", 1971)["suggestedName"], "可删除")
        self.run_cli(self.mail, "guide", "mail-account:nobody", expect=1)

        rows = [row for entry in self.library("--account", clean[0]["key"])
                if year_of(entry["date"]) == clean[1]["year"] for row in self.rows_of(entry)]
        boxes = self.ask_store(("SELECT ROWID, url FROM mailboxes",))
        trash = next(box for box, url in boxes if unquote(url).endswith(TRASH[0]))
        self.ask_store(*[("UPDATE messages SET mailbox = ? WHERE ROWID = ?", trash, row) for row in rows[::2]],
                       *[("DELETE FROM messages WHERE ROWID = ?", row) for row in rows[1::2]])
        self.run_cli(self.mail, "refresh")
        second = self.run_cli(self.mail, "overview", "--check")
        self.assertGreater(self.expect_true_overview(second)["completed"], 0)
        self.assertGreater(second["removed"]["count"], 0)
        self.assertEqual(self.run_cli(self.mail, "overview"), second)

    def test_menus_groups_and_two_archives_that_were_begun_at_one_moment(self):
        copy = self.mail / "Library/Mobile Documents/com~apple~CloudDocs/副本"
        shutil.copytree(self.archive, copy)
        self.assertEqual(len(self.run_cli(self.mail, "locations")), 1)
        for place, root in enumerate((self.archive, copy)):
            index = json.loads((root / "archive-index.json").read_text(encoding="utf-8"))
            del index["records"][place]
            (root / "archive-index.json").write_text(json.dumps(index), encoding="utf-8")
        self.assertEqual(len(self.run_cli(self.mail, "locations")), 2)
        entries = self.library()
        self.assertEqual(entries[::-1], self.library("--ascending"))
        menus = self.run_cli(self.mail, "library", "--options", "--location", copy)
        self.assertEqual((menus["entries"], menus["totalBytes"]), (len(entries), sum(e["sizeBytes"] for e in entries)))
        of_copy = [entry for entry in entries if entry["locationRootPath"] == str(copy)]
        counts = collections.Counter(entry["accountKey"] for entry in of_copy)
        self.assertEqual({option["key"]: option["count"] for option in menus["accountOptions"]}, counts)
        self.assertEqual(self.run_cli(self.mail, "library", "--mailbox=", "--ascending"), [])
        groups = self.run_cli(self.mail, "library", "--groups")
        self.assertEqual(sorted(id for group in groups for id in group["entries"]), sorted(e["entryID"] for e in entries))

        key = counts.most_common()[0][0]
        self.assertEqual(self.run_cli(self.mail, "merge", "--name", "工作", "--base", key), {key: "工作"})
        merged = self.library("--account", "usergroup:工作")
        self.assertEqual([e["entryID"] for e in merged], [e["entryID"] for e in entries if e["accountKey"] == key])
        self.assertEqual(self.run_cli(self.mail, "merge", "--remove", "工作"), {})
        self.run_cli(self.mail, "merge", "--name", " ", expect=2)
        account = self.run_cli(self.mail, "space")[0]
        sender = account["topSenders"][0]
        ids = self.run_cli(self.mail, "space", "--account", account["accountPrefix"], "--sender", sender["senderKey"])
        self.assertGreaterEqual(len(ids), sender["messageCount"])

        # An account that isn't there: a person is told which ones are, a script gets its answer and a warning.
        typed = "--account=" + account["accountPrefix"] + "x"
        for command in (["messages"], ["space"], ["prove"], ["archive", f"--to={self.folder}/new"]):
            for mode, status in (([], 1), (["--json"], 0)):
                done = subprocess.run([CLI, "--home", self.mail, *mode, *command, typed], capture_output=True, text=True)
                self.assertRegex(done.stderr, f"有的是：.*{re.escape(account['accountPrefix'])}[、\n]", command)
                self.assertEqual(done.returncode, status, command)


if __name__ == "__main__":
    unittest.main()
