"""Single mails are found without loading the library, and no derived file changes what is answered."""

import json
import os
import shutil
import subprocess
import unittest

from cli_support import CLI, SUPPORT, CliCase



class Quick(CliCase):
    def setUp(self):
        super().setUp()
        self.mail = self.home("home", "--messages", "300")
        self.run_cli(self.mail, "refresh")
        self.archives = [self.folder / "one", self.folder / "two"]
        self.run_cli(self.mail, "archive", "--to", self.archives[0], "--limit", "80", expect=3)
        index = self.archives[0] / "archive-index.json"
        index.write_text(json.dumps({**json.loads(index.read_text()), "createdAt": "2020-01-01T00:00:00Z"}))
        self.run_cli(self.mail, "archive", "--to", self.archives[1], "--limit", "60", expect=3)
        self.settle()
        self.entries = self.run_cli(self.mail, "library")

    def settle(self):
        """What was written a moment ago could change again without a trace."""
        for path in [*self.folder.glob("*/archive-index.json"), *(self.mail / SUPPORT).glob("search-*.sqlite")]:
            os.utime(path, (path.stat().st_atime, path.stat().st_mtime - 10))

    def derived(self):
        return sorted([*(self.mail / SUPPORT / "index-cache").glob("*.digest"),
                       *(self.mail / SUPPORT).glob("*-ends")])

    def loaded(self):
        log = self.mail / SUPPORT / "archive-library-startup.log"
        return log.exists() and "live index load start" in log.read_text()

    def answers(self):
        entry = self.entries[7]
        handle = self.found[0]["handle"] if hasattr(self, "found") else "000000"
        return [self.run_cli(self.mail, "search", "--details", "会议"),
                self.run_cli(self.mail, "show", "--query", "的", entry["entryID"]),
                self.run_cli(self.mail, "show", handle[:9])]

    def test_derived_files_change_no_answer(self):
        self.found = self.run_cli(self.mail, "search", "--details", "会议")
        dates = [mail.get("date", "") for mail in self.found]
        self.assertEqual(dates, sorted(dates, reverse=True))
        expected = self.answers()
        self.assertFalse(self.loaded(), "the digests answer")
        self.assertEqual(len(self.derived()), 4)
        sound = {path: path.read_bytes() for path in self.derived()}
        for damage in (lambda b: b"", lambda b: b"{}", lambda b: b[:len(b) // 2], lambda b: b + b"\0" * 32,
                       lambda b: b[:200] + b"\xa5" * 64 + b[264:]):
            for path, content in sound.items():
                path.write_bytes(damage(content))
            self.assertEqual(self.answers(), expected)
        for path in sound:
            path.unlink(missing_ok=True)
            os.mkfifo(path)
        self.assertEqual(self.answers(), expected)
        for path in sound:
            path.unlink(missing_ok=True)
            path.mkdir()
        self.assertEqual(self.answers(), expected)

    def test_a_changed_archive_is_seen_at_once(self):
        index = self.archives[1] / "archive-index.json"
        content = json.loads(index.read_text())
        gone = content["records"].pop()
        self.run_cli(self.mail, "show", gone["id"])
        index.write_text(json.dumps(content))
        self.run_cli(self.mail, "show", gone["id"], expect=1)
        shutil.move(self.archives[0], self.folder / "away")
        names = [e["entryID"] for e in self.entries if e["locationRootPath"] == str(self.archives[0])]
        self.settle()
        shown = self.run_cli(self.mail, "show", names[0])
        self.assertEqual((shown["gone"], shown["available"]), (True, False), "the disk is there without the folder")
        self.run_cli(self.mail, "library")
        self.run_cli(self.mail, "show", names[0])
        self.assertFalse(self.loaded(), "an archive that is away has its digest, too")

    def test_a_name_that_fits_several_lists_them(self):
        shutil.copytree(self.archives[1], self.folder / "three")
        index = self.folder / "three" / "archive-index.json"
        index.write_text(json.dumps({**json.loads(index.read_text()), "createdAt": "2019-01-01T00:00:00Z"}))
        self.run_cli(self.mail, "archive", "--to", self.folder / "three", "--limit", "0")
        name = json.loads(index.read_text())["records"][0]["id"]
        for _ in range(3):
            done = subprocess.run([CLI, "--home", self.mail, "show", name], capture_output=True, text=True, timeout=60)
            self.assertEqual((done.returncode, done.stdout), (2, ""))
            self.assertEqual(len(done.stderr.strip().split("\n")), 3)
            self.settle()

    def test_an_archive_that_takes_a_look_of_its_own_costs_no_other(self):
        """Two of one time, the same or not, an index that changes, and one that can't be read."""
        one, two = self.archives
        own = json.loads((two / "archive-index.json").read_text())
        shutil.copytree(two, self.folder / "copy")
        shutil.copytree(two, self.folder / "other")
        others = {**own, "records": [{**r, "id": "mid:other" + r["id"]} for r in own["records"]]}
        (self.folder / "other" / "archive-index.json").write_text(json.dumps(others))
        for name in ("copy", "other"):
            self.run_cli(self.mail, "archive", "--to", self.folder / name, "--limit", "0")
        self.settle()
        roots = {e["locationRootPath"] for e in self.run_cli(self.mail, "library")}
        self.assertEqual(roots, {str(one), str(self.folder / "other"), str(self.folder / "copy")}, "the destination first")
        name, of_other = own["records"][0]["id"], others["records"][0]["id"]
        shows = lambda *names: [self.run_cli(self.mail, "show", name)["record"]["subject"] for name in names]
        subject = own["records"][0].get("subject", "")
        self.assertEqual(shows(name, of_other), [subject] * 2)
        self.assertFalse(self.loaded(), "of the same ones one is left out by the digests")
        others["records"][0]["subject"] = "改过"
        (self.folder / "other" / "archive-index.json").write_text(json.dumps(others))
        self.assertEqual(shows(name, of_other), [subject, "改过"])
        (one / "archive-index.json").write_text("{")
        self.settle()
        self.assertEqual(shows(name, of_other), [subject, "改过"])
        self.assertFalse(self.loaded(), "only what has changed is read")
        gone = next(e["entryID"] for e in self.entries if e["locationRootPath"] == str(one))
        self.run_cli(self.mail, "show", gone, expect=1)
        shutil.move(one, self.folder / "away")
        for _ in range(2):
            self.assertTrue(self.run_cli(self.mail, "show", gone)["gone"], "of an archive that is away the copy counts")
        self.assertFalse(self.loaded())

    def test_a_limit_gives_the_newest_of_all(self):
        for text in ("@", "e", "会议", "nowhere"):
            found = self.run_cli(self.mail, "search", "--details", text)
            for limit in (0, 1, 5, 40, 1000):
                self.assertEqual(self.run_cli(self.mail, "search", "--details", "--limit", limit, text), found[:limit])
                ids = sorted({mail["entryID"].split("\x01")[1] for mail in found[:limit]})
                self.assertEqual(self.run_cli(self.mail, "search", "--limit", limit, text), ids)

    def test_what_is_known_of_the_original_and_the_file(self):
        name = next(e["entryID"] for e in self.entries if e["locationRootPath"] == str(self.archives[0]))
        told = lambda: [self.run_cli(self.mail, "show", name)[key] for key in ("present", "gone", "available")]
        self.assertEqual(told(), ["unknown", False, True])
        status = self.run_cli(self.mail, "presence", "--force")["statuses"][name]
        self.assertEqual(told(), [status, False, True])
        self.settle()
        self.run_cli(self.mail, "library")
        shutil.move(self.archives[0], self.folder / "away")
        expected = [status, True, False]
        self.assertEqual(told(), expected, "the disk is there without the folder")
        self.assertFalse(self.loaded())
        for path in self.derived():
            path.unlink()
        self.assertEqual(told(), expected)
        cache = self.mail / SUPPORT / "archived-original-presence-cache.json"
        sound = cache.read_text()
        cache.write_text(json.dumps(json.loads(sound)))
        self.assertEqual(told(), expected, "written by another program")
        for text in (sound[:-40], sound.replace('"signature":"', '"signature":"1'), ""):
            cache.write_text(text)
            self.assertEqual(told(), ["unknown", True, False])

    def test_a_forgotten_place_costs_nothing_until_it_returns(self):
        name, other = (next(e["entryID"] for e in self.entries if e["locationRootPath"] == str(root))
                       for root in self.archives)
        self.run_cli(self.mail, "forget", self.archives[0])
        self.settle()
        self.run_cli(self.mail, "library")
        self.run_cli(self.mail, "show", other)
        self.run_cli(self.mail, "search", "会议")
        self.assertFalse(self.loaded())
        self.run_cli(self.mail, "show", name, expect=1)

    def test_foreign_indexes_end_nothing(self):
        index = self.archives[1] / "archive-index.json"
        sound = json.loads(index.read_text())
        first = sound["records"][0]
        twice = {**sound, "records": sound["records"] + [{**first, "subject": "又一次"}]}
        climbing = {**sound, "records": [{**first, "emlRelativePath": path, "id": f"mid:{path}"}
                                         for path in ("../../one/x.eml", "/etc/passwd", "", "a\0b")]}
        typed = {**sound, "records": [{**first, "sizeBytes": "many"}]}
        fraction = {**sound, "createdAt": "2020-01-01T00:00:00.123Z"}
        for content in (json.dumps(twice), json.dumps(climbing), json.dumps(typed), json.dumps(fraction),
                        json.dumps(sound)[:5000], "[]", "", "[" * 100000):
            index.write_text(content)
            self.settle()
            self.run_cli(self.mail, "search", "会议")
            for name in ("mid:/etc/passwd", "mid:../../one/x.eml"):
                done = subprocess.run([CLI, "--home", self.mail, "--json", "show", name], capture_output=True,
                                      timeout=60)
                self.assertIn(done.returncode, (0, 1))
                shown = json.loads(done.stdout)
                self.assertTrue("error" in shown or (shown["gone"] and not shown["available"]))


if __name__ == "__main__":
    unittest.main()
