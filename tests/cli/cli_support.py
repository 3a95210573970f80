"""Runs corvane-cli over homes made for a test."""

import hashlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
CLI = os.environ.get("CORVANE_CLI", str(ROOT / "build/dev/bin/corvane-cli"))
INDEX = "Library/Mail/V10/MailData/Envelope Index"
# Where the system keeps what is a program's own, in a home.
ON_MAC = sys.platform == "darwin"
SUPPORT = "Library/Application Support/Corvane" if ON_MAC else ".local/share/Corvane"
SETTINGS = "Library/Preferences/app.corvane.Corvane.json" if ON_MAC else ".config/Corvane.conf"


def make_home(path, *options):
    subprocess.run([sys.executable, ROOT / "tools/make_sample_store.py", "--quiet", *options, path], check=True)
    return pathlib.Path(path)


def tree_state(folder):
    """Names, sizes, times and contents of everything below a folder."""
    state = {}
    for path in sorted(pathlib.Path(folder).rglob("*")):
        info = path.lstat()
        content = hashlib.sha256(path.read_bytes()).hexdigest() if path.is_file() else ""
        state[str(path.relative_to(folder))] = (info.st_size, info.st_mtime_ns, info.st_mode, content)
    return state


class CliCase(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="corvane-cli-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def home(self, name="home", *options):
        return make_home(self.folder / name, *options)

    def run_cli(self, home, *arguments, expect=0, environment=None, **process_options):
        """Exit status must be `expect`; gives the JSON document of standard output."""
        command = [CLI, "--home", str(home), "--json", *map(str, arguments)]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120,
                              env={**os.environ, **(environment or {})}, **process_options)
        self.assertEqual(done.returncode, expect, done.stderr.decode(errors="replace")[-3000:])
        return json.loads(done.stdout) if done.stdout else None

    def start_cli(self, home, *arguments):
        return subprocess.Popen([CLI, "--home", str(home), "--json", *map(str, arguments)], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)

    def manifest(self, home):
        return json.loads((home / "sample-store.json").read_text(encoding="utf-8"))


def archive_state(root):
    """The archive without its times: contents by path, and the records of the index by id."""
    files = {str(p.relative_to(root)): p.read_bytes() for p in sorted(root.rglob("*.eml"))}
    index = json.loads((root / "archive-index.json").read_text(encoding="utf-8"))
    records = {}
    for record in index["records"]:
        record.pop("archivedAt")
        records[record["id"]] = record
    return files, records


__all__ = ["CliCase", "CLI", "INDEX", "ROOT", "archive_state", "make_home", "signal", "tree_state"]
