"""Whether originals are still in Mail, removing and forgetting, and the settings that travel with archives."""

import json
import os
import sqlite3
import unittest

from cli_support import INDEX, SETTINGS, SUPPORT, CliCase

TRASH = "ROWID IN (SELECT ROWID FROM mailboxes WHERE url LIKE '%/Deleted%20Messages' OR url LIKE '%/Trash' " \
        "OR url LIKE '%/Junk' OR url LIKE '%/Deleted%20Items' OR url LIKE '%/Spam')"


class LibraryCare(CliCase):
    def setUp(self):
        super().setUp()
        self.home_path = self.home("home", "--messages", "60")
        self.archive = self.folder / "archive"
        self.run_cli(self.home_path, "refresh")
        process = self.start_cli(self.home_path, "archive", "--to", self.archive)
        process.communicate(timeout=120)
        self.assertIn(process.returncode, (0, 3))

    def records(self):
        return json.loads((self.archive / "archive-index.json").read_text(encoding="utf-8"))["records"]

    def entry_id(self, record):
        return f"{self.archive}\x01{record['id']}"

    def change_index(self, sql, values=()):
        database = sqlite3.connect(self.home_path / INDEX)
        with database:
            database.execute(sql, values)
        database.close()

    def live_identifiers(self):
        """By a query of our own, without what lies in the trash."""
        database = sqlite3.connect(f"file:{self.home_path / INDEX}?mode=ro", uri=True)
        rows = database.execute(f"""SELECT DISTINCT g.message_id_header FROM messages m JOIN message_global_data g
            ON g.message_id = m.message_id WHERE m.mailbox NOT IN (SELECT ROWID FROM mailboxes WHERE {TRASH})""")
        found = {(header or "").strip().strip("<>").lower() for header, in rows}
        database.close()
        return found

    def expected(self):
        live = self.live_identifiers()
        return {self.entry_id(record): "unknown" if "messageIdentifier" not in record else
                "present" if record["messageIdentifier"] in live else "missing" for record in self.records()}

    def test_presence_is_what_the_live_index_says(self):
        self.assertEqual(self.run_cli(self.home_path, "presence"), {"state": "unchecked", "statuses": {}})
        first = self.run_cli(self.home_path, "presence", "--force")
        self.assertEqual(first, {"state": "checked", "statuses": self.expected()})
        self.assertIn("present", first["statuses"].values())
        identifiers = [r["messageIdentifier"] for r in self.records() if "messageIdentifier" in r]
        self.change_index("DELETE FROM messages WHERE message_id IN (SELECT message_id FROM message_global_data "
                          "WHERE lower(message_id_header) LIKE ?)", (f"%{identifiers[0]}%",))
        self.change_index("INSERT INTO mailboxes(ROWID, url) VALUES(9999, 'imap://X/Deleted%20Messages')")
        self.change_index("UPDATE messages SET mailbox = 9999 WHERE message_id IN (SELECT message_id FROM "
                          "message_global_data WHERE lower(message_id_header) LIKE ?)", (f"%{identifiers[1]}%",))
        self.assertEqual(self.run_cli(self.home_path, "presence"), first)
        second = self.run_cli(self.home_path, "presence", "--force")
        self.assertEqual(second["statuses"], self.expected())
        self.assertGreaterEqual(list(second["statuses"].values()).count("missing"), 2)
        os.rename(self.home_path / INDEX, self.home_path / "aside")
        earlier = self.run_cli(self.home_path, "presence", "--force")
        self.assertTrue(earlier.pop("failureMessage").startswith("没有完整磁盘访问权限"))
        self.assertEqual(earlier, second)
        (self.home_path / SUPPORT / "archived-original-presence-cache.json").unlink()
        unavailable = self.run_cli(self.home_path, "presence", "--force")
        self.assertEqual((unavailable["state"], unavailable["statuses"]), ("unavailable", {}))
        self.assertTrue(unavailable["failureMessage"].startswith("没有完整磁盘访问权限"))
        self.assertEqual(self.run_cli(self.home_path, "presence")["state"], "unchecked")

    def search_database(self):
        database = sqlite3.connect(next((self.home_path / SUPPORT).glob("search-*.sqlite")))
        self.addCleanup(database.close)
        return database

    def test_removed_mail_leaves_nothing_behind_and_nothing_else_goes(self):
        first, second, kept = self.records()[:3]
        names = {(self.archive / r["emlRelativePath"]) for r in self.records()}
        done = self.run_cli(self.home_path, "remove", self.entry_id(first), second["id"])
        self.assertEqual(done, {"removed": 2, "failures": []})
        left = {p for p in self.archive.rglob("*.eml")}
        self.assertEqual(names - left, {self.archive / r["emlRelativePath"] for r in (first, second)})
        self.assertNotIn(first["id"], {r["id"] for r in self.records()})
        self.run_cli(self.home_path, "remove", self.entry_id(first), expect=1)
        (self.archive / kept["emlRelativePath"]).unlink()
        with self.search_database() as database:
            row = database.execute("INSERT INTO email_fts(record_id, subject) VALUES('mid:killed', 'x')").lastrowid
            database.execute("INSERT INTO record_map VALUES('mid:killed', ?)", (row,))
        self.assertEqual(self.run_cli(self.home_path, "remove", self.entry_id(kept))["removed"], 1)
        left = {row[0] for row in self.search_database().execute("SELECT record_id FROM record_map")}
        self.assertEqual(left, {r["id"] for r in self.records()}, "what a killed removal has left goes, too")
        verified = self.run_cli(self.home_path, "verify", self.archive)
        self.assertEqual((verified["missing"], verified["unindexed"]), ([], []))

    def test_an_index_by_somebody_else_removes_nothing_of_others(self):
        outside = self.folder / "outside.eml"
        outside.write_text("outside")
        index = json.loads((self.archive / "archive-index.json").read_text(encoding="utf-8"))
        index["records"][0]["emlRelativePath"] = "../outside.eml"
        (self.archive / "archive-index.json").write_text(json.dumps(index), encoding="utf-8")
        done = self.run_cli(self.home_path, "remove", self.entry_id(index["records"][0]), expect=3)
        self.assertEqual((done["removed"], len(done["failures"])), (0, 1))
        self.assertTrue(outside.exists())
        self.assertEqual(len(self.records()), len(index["records"]) - 1)
        (self.archive / "archive-index.json").write_text("{}", encoding="utf-8")
        files = sorted(self.archive.rglob("*.eml"))
        self.run_cli(self.home_path, "remove", self.entry_id(index["records"][1]), expect=1)
        self.assertEqual(sorted(self.archive.rglob("*.eml")), files)
        for command in ("locations", "library", "stats", "search body", "presence --force", "overview", "prove"):
            process = self.start_cli(self.home_path, *command.split())
            told = process.communicate(timeout=120)[1].decode()
            self.assertEqual(told.count("归档的索引读不了（内容已损坏"), 1, f"{command}: {told}")
            self.assertEqual(process.returncode, 3 if command == "prove" else 0, command)

    def test_a_forgotten_place_is_gone_from_the_library_and_untouched(self):
        files = sorted(self.archive.rglob("*.eml"))
        self.assertIn("error", self.run_cli(self.home_path, "forget", self.folder / "other", expect=1))
        self.assertEqual(self.run_cli(self.home_path, "forget", self.archive), {"forgotten": True})
        self.assertEqual(self.run_cli(self.home_path, "locations"), [])
        self.assertEqual(sorted(self.archive.rglob("*.eml")), files)
        self.assertNotIn("destinationPath", self.run_cli(self.home_path, "config", "show"))

    def test_a_setting_that_cannot_be_kept_is_no_success(self):
        backup = self.folder / "mine.corvanebackup"
        self.run_cli(self.home_path, "config", "export", backup)
        for name, commands in ((SETTINGS, (["merge", "--name", "N", "--address", "a@x.example"],
                                           ["config", "import", backup])),
                               (SUPPORT, (["diagnose"],))):
            folder = (self.home_path / name).parent
            folder.rename(self.folder / "aside")
            folder.touch()
            for command in commands:
                process = self.start_cli(self.home_path, *command)
                output, told = (text.decode() for text in process.communicate(timeout=120))
                self.assertEqual((process.returncode, told.count("没能写入")), (1, 1), f"{command}: {told}")
                self.assertIn("没能写入", json.loads(output)["error"])
            folder.unlink()
            (self.folder / "aside").rename(folder)

    def test_settings_travel(self):
        shown = self.run_cli(self.home_path, "config", "show")
        self.assertEqual((shown["version"], shown["destinationPath"]), (1, str(self.archive)))
        self.assertIn(str(self.archive), shown["knownLocationRoots"])
        carried = json.loads((self.archive / "app-backup.json").read_text(encoding="utf-8"))
        self.assertEqual({**carried, "exportedAt": ""}, {**shown, "exportedAt": ""})
        file = self.folder / "mine.corvanebackup"
        self.run_cli(self.home_path, "config", "export", file)
        other = self.home("other", "--messages", "50")
        self.assertIsNone(self.run_cli(other, "config", "offer"))
        self.run_cli(other, "config", "apply-offer", expect=1)
        self.assertEqual(self.run_cli(other, "config", "import", file)["destinationPath"], str(self.archive))
        self.assertEqual(len(self.run_cli(other, "library")), len(self.records()))
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        self.run_cli(self.home_path, "config", "export", pipe, expect=1)
        self.assertTrue(pipe.is_fifo(), "a device or a pipe isn't replaced")
        file.write_text("[]")
        refused = self.run_cli(other, "config", "import", file, expect=1)
        self.assertTrue(refused["error"].startswith("无法读取该备份文件："))

        third = self.home("third", "--messages", "50")
        box = third / "Library/CloudStorage/Box-Box"
        box.mkdir(parents=True)
        os.rename(self.archive, box / "Mail")
        for _ in range(2):
            self.assertEqual(self.run_cli(third, "config", "offer")["destinationPath"], str(self.archive))
        self.run_cli(third, "config", "apply-offer")
        self.assertIsNone(self.run_cli(third, "config", "offer"))


if __name__ == "__main__":
    unittest.main()
