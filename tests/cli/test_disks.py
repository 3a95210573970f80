"""Archives on a disk that is plugged in, pulled and copied, with a file system that is really mounted."""

import json
import os
import pathlib
import shutil
import subprocess
import unittest

from cli_support import CliCase


def run(*command):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)


class Disks(CliCase):
    def setUp(self):
        super().setUp()
        self.stick = pathlib.Path("/media") / ("corvane-test-%d" % os.getpid())
        self.image = self.folder / "disk.img"
        with open(self.image, "wb") as image:
            image.truncate(24 << 20)
        if run("mkfs.ext4", "-q", self.image).returncode != 0:
            self.skipTest("no file system can be made here")
        try:
            self.stick.mkdir(parents=True)
        except OSError as error:
            self.skipTest("no disk can be mounted here: %s" % error)
        self.addCleanup(lambda: self.stick.exists() and self.stick.rmdir())
        self.addCleanup(run, "umount", self.stick)
        self.plug_in()

    def plug_in(self):
        self.stick.mkdir(exist_ok=True)
        done = run("mount", "-o", "loop", self.image, self.stick)
        if done.returncode != 0:
            self.skipTest("no disk can be mounted here: " + done.stderr.decode(errors="replace"))

    def pull(self):
        """As the desktop does: the mount point goes with the disk."""
        self.assertEqual(run("umount", self.stick).returncode, 0)
        self.stick.rmdir()

    def locations(self, home):
        return {each["rootPath"]: each["isConnected"] for each in self.run_cli(home, "locations")}

    def test_what_is_archived_stays_known_while_its_disk_is_away(self):
        home = self.home("home", "--messages", "80")
        root = self.stick / "Mail"
        self.run_cli(home, "refresh")
        self.run_cli(home, "archive", "--to", root, "--no-index", expect=3)
        listed = self.run_cli(home, "library")
        entry = listed[0]["entryID"]
        self.assertEqual(self.locations(home), {str(root): True})

        self.pull()
        self.assertEqual(self.locations(home), {str(root): False})
        self.assertEqual(self.run_cli(home, "library"), listed)
        for command in ("stats", "overview"):
            away = self.run_cli(home, command)["awayProofs"]
            self.assertGreater(away["count"], 0)
            self.assertEqual(away["oldest"][:2], "20")
        for command in (["open", entry, "--dry-run"], ["export", "--format", "mbox", "--to", self.folder / "x.mbox"]):
            told = self.run_cli(home, *command, expect=1 if command[0] == "open" else 3)
            self.assertNotIn("找不到了", json.dumps(told, ensure_ascii=False), "a disk that is away has lost nothing")

        self.plug_in()
        self.assertEqual(self.locations(home), {str(root): True})
        self.run_cli(home, "open", entry, "--dry-run")
        copy = self.folder / "copy"
        shutil.copytree(root, copy)
        self.run_cli(home, "archive", "--to", copy, "--no-index", expect=3)
        self.assertEqual(len(self.run_cli(home, "library")), len(listed), "a copy is no second archive")
        self.pull()
        self.assertEqual(self.locations(home), {str(copy): True}, "what is connected stands for both")

        shutil.rmtree(copy)
        self.plug_in()
        self.assertEqual(self.locations(home)[str(root)], True)
        shutil.rmtree(root)
        self.assertNotIn(str(root), self.locations(home))
        self.pull()
        self.assertNotIn(str(root), self.locations(home), "an archive that was deleted doesn't come back with its disk away")

    def test_verify_takes_back_what_would_count_while_the_disk_is_away(self):
        home = self.home("home", "--messages", "80")
        root = self.stick / "Mail"
        self.run_cli(home, "refresh")
        self.run_cli(home, "archive", "--to", root, "--no-index", expect=3)

        def proven_while_away():
            self.pull()
            self.stick = root.parent
            count = self.run_cli(home, "stats")["awayProofs"]["count"]
            self.plug_in()
            return count

        first = proven_while_away()
        records = json.loads((root / "archive-index.json").read_text(encoding="utf-8"))["records"]
        lost, altered = [record["emlRelativePath"] for record in records
                         if "#v" not in record["id"] and "（" not in record["emlRelativePath"]][:2]
        (root / lost).unlink()
        self.run_cli(home, "verify", root, expect=3)
        self.assertEqual(proven_while_away(), first - 1)

        self.pull()
        self.stick = root.parent.with_name(root.parent.name + "-1")
        self.addCleanup(run, "umount", self.stick)
        self.plug_in()
        there = self.stick / "Mail" / altered
        there.write_bytes(there.read_bytes()[:-1] + b"?")
        self.run_cli(home, "verify", self.stick / "Mail", expect=3)
        self.assertEqual(proven_while_away(), first - 2, "the disk has had another name")


if __name__ == "__main__":
    unittest.main()
