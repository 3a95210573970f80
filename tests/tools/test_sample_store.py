"""The sample store against the rules of Mail's store, each written here a second time: whoever uses
the store and its manifest must be able to trust both."""

from __future__ import annotations

import datetime
import email
import email.header
import email.policy
import email.utils
import hashlib
import json
import os
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest
import urllib.parse
from collections import defaultdict

SCRIPT = os.path.join(os.path.dirname(__file__), "../../tools/make_sample_store.py")
DATE = ("COALESCE(NULLIF(m.display_date, 0), NULLIF(m.date_received, 0),"
        " NULLIF(m.date_sent, 0), 0)")
CANDIDATES = f"""
SELECT m.ROWID AS rowid, mb.url AS url,
  COALESCE(m.subject_prefix, '') || COALESCE(sub.subject, '') AS subject,
  COALESCE(sa.comment, '') AS senderName, COALESCE(sa.address, '') AS senderAddress,
  COALESCE((SELECT GROUP_CONCAT(CASE WHEN ra.comment IS NOT NULL AND ra.comment != ''
      THEN ra.comment || ' <' || ra.address || '>' ELSE ra.address END, ', ')
    FROM recipients r JOIN addresses ra ON ra.ROWID = r.address WHERE r.message = m.ROWID
    ORDER BY r.position), '') AS recipients,
  {DATE} AS msgDate, m.size AS msgSize, COALESCE(g.message_id_header, '') AS messageId,
  COALESCE((SELECT GROUP_CONCAT(a.name, char(31)) FROM attachments a
    WHERE a.message = m.ROWID AND a.name IS NOT NULL AND a.name != ''), '') AS attachments
FROM messages m JOIN mailboxes mb ON mb.ROWID = m.mailbox
LEFT JOIN subjects sub ON sub.ROWID = m.subject
LEFT JOIN addresses sa ON sa.ROWID = m.sender
LEFT JOIN message_global_data g ON g.message_id = m.message_id
WHERE {DATE} > 0 GROUP BY m.ROWID, mb.url ORDER BY {DATE} DESC;
"""


def make(home: str, *options: str) -> subprocess.CompletedProcess:
    return subprocess.run([sys.executable, SCRIPT, home, "--quiet", *options],
                          capture_output=True, text=True)


def index_path(home: str, version: str = "V10") -> str:
    return os.path.join(home, "Library/Mail", version, "MailData/Envelope Index")


def shell_rows(home: str, sql: str) -> list[dict]:
    result = subprocess.run(["sqlite3", "-readonly", "-json", index_path(home), sql],
                            capture_output=True, check=True)
    return json.loads(result.stdout or b"[]")


def manifest(home: str) -> dict:
    with open(os.path.join(home, "sample-store.json"), encoding="utf-8") as file:
        return json.load(file)


def tree(home: str) -> dict[str, str]:
    found = {}
    for folder, folders, names in os.walk(home):
        for name in folders:
            found[os.path.relpath(os.path.join(folder, name), home)] = "folder"
        for name in names:
            path = os.path.join(folder, name)
            with open(path, "rb") as file:
                found[os.path.relpath(path, home)] = hashlib.sha256(file.read()).hexdigest()
    return found


def file_of_row(home: str, url: str, rowid: int) -> str | None:
    """The path rule of the store: nested .mbox folders, an optional level, buckets of thousands."""
    _, _, rest = url.partition("://")
    uuid, *components = [urllib.parse.unquote(part) for part in rest.split("/") if part]
    folder = os.path.join(home, "Library/Mail/V10", uuid,
                          *(re.sub(r"(\.mbox)?$", ".mbox", part, count=1) for part in components))
    roots = [folder] + ([entry.path for entry in os.scandir(folder) if entry.is_dir()]
                        if os.path.isdir(folder) else [])
    root = next((path for path in roots if os.path.isdir(os.path.join(path, "Data"))), None)
    digits = list(str(rowid // 1000))[::-1] if rowid >= 1000 else []
    path = root and os.path.join(root, "Data", *digits, "Messages", f"{rowid}.emlx")
    return os.path.relpath(path, home) if path and os.path.exists(path) else None


def cut(data: bytes) -> bytes | None:
    """The message of an .emlx by its count; None where the first line is no count."""
    line, feed, rest = data.partition(b"\n")
    text = line.strip() if feed else b""
    if not re.fullmatch(rb"\d{1,18}", text):
        return None
    return rest[:int(text)]


def read(home: str, path: str) -> bytes:
    with open(os.path.join(home, path), "rb") as file:
        return file.read()


def decoded_sender(data: bytes) -> tuple[str, str]:
    # The newer header parser puts a blank between two encoded words of a name.
    name, address = email.utils.parseaddr(email.message_from_bytes(data)["from"])
    return str(email.header.make_header(email.header.decode_header(name))), address


class DefaultStore(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = tempfile.mkdtemp(prefix="sample-store-")
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.home = os.path.join(cls.folder, "home")
        made = make(cls.home)
        assert made.returncode == 0, made.stderr
        cls.manifest = manifest(cls.home)
        cls.messages = cls.manifest["messages"]

    def test_same_seed_gives_the_same_bytes_and_another_seed_does_not(self):
        first, second, third = (os.path.join(self.folder, name) for name in ("a", "b", "c"))
        for home, seed in ((first, "5"), (second, "5"), (third, "6")):
            made = make(home, "--messages", "150", "--seed", seed)
            self.assertEqual(made.returncode, 0, made.stderr)
        self.assertEqual(tree(first), tree(second))
        self.assertNotEqual(tree(first), tree(third))

    def test_candidate_query_gives_the_listed_rows_of_the_manifest(self):
        rows = {row["rowid"]: row for row in shell_rows(self.home, CANDIDATES)}
        listed = {message["rowid"]: message for message in self.messages if message["listed"]}
        self.assertEqual(len(self.messages), 600)
        self.assertEqual(rows.keys(), listed.keys())
        for rowid, message in listed.items():
            people = [f"{person['name']} <{person['address']}>" if person["name"]
                      else person["address"] for person in message["recipients"]]
            expected = {
                "rowid": rowid, "url": message["url"], "subject": message["subject"],
                "senderName": message["senderName"], "senderAddress": message["senderAddress"],
                "recipients": ", ".join(people), "msgDate": message["date"],
                "msgSize": message["size"], "messageId": message["messageIdHeader"],
                "attachments": "\x1f".join(message["indexAttachments"]),
            }
            self.assertEqual(rows[rowid], expected, message["tag"])

    def test_files_lie_where_the_path_rule_looks(self):
        for message in self.messages:
            found = message["url"] and file_of_row(self.home, message["url"], message["rowid"])
            self.assertEqual(found, message["file"], message["tag"])
            self.assertEqual(message["local"], message["listed"] and found is not None)
            for stored in message["storedFiles"]:
                folder = (message["file"] or message["partialFile"]).rpartition("/Messages/")[0]
                self.assertRegex(stored["path"], re.escape(f"{folder}/Attachments/"
                                                           f"{message['rowid']}/") + r"[\d.]+/[^/]+")
                self.assertEqual(len(read(self.home, stored["path"])), stored["bytes"])

    def test_every_message_file_is_told_of(self):
        told = {message[key] for message in self.messages for key in ("file", "partialFile")}
        told |= set(self.manifest["orphanFiles"])
        found = {path for path in tree(self.home) if "/V10/" in path
                 and "/Messages/" in path and not os.path.basename(path).startswith("._")}
        self.assertEqual(found, told - {None})

    def test_counts_cut_the_message_that_was_meant(self):
        uncuttable = 0
        for message in self.messages:
            if not message["file"]:
                continue
            data = read(self.home, message["file"])
            self.assertEqual(len(data), message["fileBytes"])
            found = cut(data)
            uncuttable += found is None
            told = ((None, None) if found is None
                    else (len(found), hashlib.sha256(found).hexdigest()))
            self.assertEqual(told, (message["messageBytes"], message["messageSha256"]),
                             message["tag"])
        self.assertGreaterEqual(uncuttable, 7)

    def test_broken_files_are_broken_as_their_tags_say(self):
        broken = {
            "file-empty": lambda count, rest: count is None,
            "file-negative": lambda count, rest: count < 0,
            "file-zero-count": lambda count, rest: count == 0 < len(rest),
            "file-too-large": lambda count, rest: count > len(rest) and b"</plist>" in rest,
            "file-cut-short": lambda count, rest: count > len(rest) and b"</plist>" not in rest,
            "file-overflow": lambda count, rest: count >= 2 ** 63,
            "file-letters": lambda count, rest: count is None,
            "file-not-utf8": lambda count, rest: count is None,
            "file-no-line-feed": lambda count, rest: count is None and not rest,
            "file-headers-only": lambda count, rest: b"\n\n" not in rest[:count],
            "file-crlf-message": lambda count, rest: b"\n" not in rest[:count].replace(b"\r\n", b""),
        }
        files = {message["tag"]: message["file"] for message in self.messages}
        for tag, is_broken in broken.items():
            line, _, rest = read(self.home, files[tag]).partition(b"\n")
            count = int(line) if re.fullmatch(rb"-?\d+ *", line) else None
            self.assertTrue(is_broken(count, rest), tag)

    def test_everyday_files_say_what_the_index_says(self):
        checked = 0
        for message in self.messages:
            if message["tag"] or not message["local"]:
                continue
            checked += 1
            data = cut(read(self.home, message["file"]))
            parsed = email.message_from_bytes(data, policy=email.policy.default)
            self.assertEqual(parsed["subject"], message["subject"])
            self.assertEqual(decoded_sender(data),
                             (message["senderName"], message["senderAddress"]))
            self.assertEqual(parsed["message-id"], f"<{message['messageIdHeader'].strip('<>')}>")
            self.assertLess(abs(parsed["date"].datetime.timestamp() - message["date"]), 3600)
            names = [part.get_filename() for part in parsed.iter_attachments()
                     if part.get_content_disposition() == "attachment"]
            self.assertEqual(names, message["attachmentNames"])
            # A broken transfer encoding or charset would show as a defect or as a replacement.
            body = parsed.get_body(("plain",))
            self.assertFalse([part for part in parsed.walk() if part.defects])
            self.assertNotIn("\ufffd", body.get_content())
        self.assertGreater(checked, 350)

    def test_duplicates_and_variants_are_those_of_the_files(self):
        groups, bodies = defaultdict(list), defaultdict(lambda: defaultdict(list))
        for message in self.messages:
            if message["listed"] and message["messageId"]:
                groups[message["messageId"]].append(message["rowid"])
            if message["local"] and message["messageId"] and message["messageBytes"] is not None:
                data = cut(read(self.home, message["file"]))
                body = re.split(rb"\r\n\r\n|\n\n", data, maxsplit=1)[1:]
                bodies[message["messageId"]][tuple(body)].append(message["rowid"])
        self.assertEqual(sorted(group for group in groups.values() if len(group) > 1),
                         sorted(self.manifest["duplicates"]))
        self.assertEqual(sorted(list(body.values()) for body in bodies.values() if len(body) > 1),
                         sorted(self.manifest["variants"]))

    def test_no_two_messages_pass_for_one_by_accident(self):
        def identity(message: dict) -> tuple:
            people = str(message["recipients"]).lower()
            return ((message["messageId"],) if message["messageId"] else
                    (message["subject"].strip().lower(), message["senderName"],
                     message["senderAddress"], people, message["date"]))
        for count, key in (("distinctLocal", "local"), ("distinctListed", "listed")):
            found = {identity(message) for message in self.messages if message[key]}
            self.assertEqual(len(found), self.manifest["counts"][count])

    def test_counts_of_the_manifest_add_up(self):
        counts, accounts = self.manifest["counts"], self.manifest["accounts"]
        self.assertEqual(counts["local"] + counts["serverOnly"] + counts["unlisted"], 600)
        self.assertGreater(counts["serverOnly"], 30)
        for account in accounts:
            rows = [message for message in self.messages if message["account"] == account["uuid"]]
            self.assertEqual(len(rows), account["messages"])
            self.assertEqual(sum(message["local"] for message in rows), account["local"])
        excluded = "废纸篓|已删除|垃圾邮件|Deleted|Junk"
        years, here = defaultdict(set), defaultdict(set)
        for message in self.messages:
            last = urllib.parse.unquote(message["url"] or "").rpartition("/")[2]
            trash = re.match(excluded, last) is not None
            self.assertEqual(trash, message["trashOrJunk"])
            if message["listed"] and message["messageNumber"] and not trash:
                year = utc_year(message["date"])
                years[year].add(message["messageNumber"])
                if message["file"]:
                    here[year].add(message["messageNumber"])
        self.assertEqual({year: len(found) for year, found in years.items()},
                         self.manifest["yearsUtc"])
        missing = {year: len(found - here[year]) for year, found in years.items()}
        self.assertEqual({year: count for year, count in missing.items() if count},
                         self.manifest["undownloadedYearsUtc"])
        self.assertLessEqual({str(year) for year in range(2010, 2026)}, years.keys())

    def test_accounts_can_be_told_from_the_store(self):
        accounts = {account["key"]: account for account in self.manifest["accounts"]}
        db = sqlite3.connect(f"file:{urllib.parse.quote(index_path(self.home))}?mode=ro", uri=True)
        self.addCleanup(db.close)
        numbers = {}
        for key, account in accounts.items():
            like = f"%{account['uuid']}%"
            self.assertTrue(os.path.isdir(os.path.join(self.home, "Library/Mail/V10",
                                                       account["uuid"])))
            numbers[key] = {number for number, in db.execute(
                "SELECT DISTINCT message_id FROM messages m JOIN mailboxes b ON b.ROWID = m.mailbox"
                " WHERE b.url LIKE ? AND message_id IS NOT NULL AND message_id != 0", (like,))}
            self.assertEqual(len(numbers[key]) == 0, key == "empty")
            if key != "empty":
                owner = account["linkedAddress"] or account["address"]
                self.assertEqual(self.usual_address(db, like), owner, key)
        for key, other in ((a, b) for a in numbers for b in numbers if a != b and numbers[a]):
            overlap = len(numbers[key] & numbers[other]) / len(numbers[key])
            self.assertEqual(overlap >= 0.7, (key, other) == ("copy", "work"), (key, other, overlap))

    @staticmethod
    def usual_address(db: sqlite3.Connection, like: str) -> str:
        """The most frequent sender of sent mail, else the most frequent To recipient."""
        top = " GROUP BY a.address ORDER BY COUNT(*) DESC LIMIT 1"
        joined = "FROM messages m JOIN mailboxes b ON b.ROWID = m.mailbox "
        sent = db.execute("SELECT a.address " + joined + "JOIN addresses a ON a.ROWID = m.sender "
                          "WHERE b.url LIKE ? AND b.url LIKE '%sent%'" + top, (like,)).fetchone()
        received = db.execute("SELECT a.address " + joined +
                              "JOIN recipients r ON r.message = m.ROWID AND r.type = 0 "
                              "JOIN addresses a ON a.ROWID = r.address WHERE b.url LIKE ? AND "
                              "(b.url LIKE '%inbox%' OR b.url LIKE 'local:%')" + top,
                              (like,)).fetchone()
        return (sent or received)[0]

    def test_accounts_database_leads_to_the_addresses(self):
        path = os.path.join(self.home, "Library/Accounts/Accounts4.sqlite")
        db = sqlite3.connect(path)
        self.addCleanup(db.close)
        rows = {pk: (uuid, f"{user} {text}", parent) for pk, uuid, user, text, parent in db.execute(
            "SELECT Z_PK, ZIDENTIFIER, ZUSERNAME, ZACCOUNTDESCRIPTION, ZPARENTACCOUNT FROM ZACCOUNT")}
        by_uuid = {row[0]: row for row in rows.values()}
        for account in self.manifest["accounts"]:
            row = by_uuid.get(account["uuid"])
            if account["key"] in ("local", "copy"):
                self.assertIsNone(row)
                continue
            told = row[1] + (rows[row[2]][1] if row[2] else "")
            self.assertIn(account["address"], told)

    def test_every_odd_case_is_in_the_default_store_and_none_without_them(self):
        home = os.path.join(self.folder, "larger")
        self.assertEqual(make(home, "--messages", "4400", "--no-files").returncode, 0)
        tags = {message["tag"] for message in self.messages}
        self.assertEqual(tags, {message["tag"] for message in manifest(home)["messages"]})
        plain = os.path.join(self.folder, "plain")
        self.assertEqual(make(plain, "--messages", "200", "--no-odd").returncode, 0)
        result = manifest(plain)
        self.assertEqual({message["tag"] for message in result["messages"]}, {None})
        self.assertEqual((result["orphanFiles"], result["counts"].get("unlisted")), ([], None))


def utc_year(date: int) -> str:
    return str(datetime.datetime.fromtimestamp(date, datetime.timezone.utc).year)


class Options(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = tempfile.mkdtemp(prefix="sample-store-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.home = os.path.join(self.folder, "home")

    def make(self, *options: str) -> None:
        made = make(self.home, "--messages", "120", *options)
        self.assertEqual(made.returncode, 0, made.stderr)

    def test_wal_keeps_rows_that_only_the_log_has(self):
        self.make("--wal")
        count = "SELECT COUNT(*) AS n FROM messages;"
        self.assertEqual(shell_rows(self.home, count), [{"n": 120}])
        self.assertEqual(shell_rows(self.home, "PRAGMA integrity_check;"),
                         [{"integrity_check": "ok"}])
        uri = f"file:{urllib.parse.quote(index_path(self.home))}?immutable=1"
        db = sqlite3.connect(uri, uri=True)
        self.addCleanup(db.close)
        self.assertLess(db.execute(count).fetchone()[0], 120)

    def test_columns_databases_and_files_can_be_left_out(self):
        self.make("--no-message-id-header", "--no-accounts-db", "--no-files", "--no-manifest")
        columns = [row["name"] for row in shell_rows(
            self.home, "SELECT name FROM pragma_table_info('message_global_data');")]
        self.assertIn("message_id", columns)
        self.assertNotIn("message_id_header", columns)
        left = tree(self.home)
        self.assertFalse([path for path in left if path.endswith(".emlx") or "Accounts" in path
                          or path == "sample-store.json"])

    def test_index_does_not_depend_on_files_being_written(self):
        self.make()
        other = os.path.join(self.folder, "other")
        self.assertEqual(make(other, "--messages", "120", "--no-files").returncode, 0)
        self.assertEqual(tree(os.path.dirname(index_path(self.home)))["Envelope Index"],
                         tree(os.path.dirname(index_path(other)))["Envelope Index"])
        self.assertEqual(manifest(other)["counts"].get("local"), None)

    def test_older_store_shares_no_message_with_the_newer_one(self):
        self.make()
        db = sqlite3.connect(index_path(self.home, "V9"))
        self.addCleanup(db.close)
        subjects = {subject for subject, in db.execute("SELECT subject FROM subjects")}
        self.assertTrue(subjects)
        self.assertFalse(subjects & {item["subject"] for item in manifest(self.home)["messages"]})

    def test_used_home_is_refused_and_left_as_it_is(self):
        os.makedirs(os.path.join(self.home, "Library/Mail/V10"))
        before = tree(self.home)
        made = make(self.home)
        self.assertNotEqual(made.returncode, 0)
        self.assertIn("already there", made.stderr)
        self.assertEqual(tree(self.home), before)


if __name__ == "__main__":
    unittest.main()
