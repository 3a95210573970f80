#!/usr/bin/env python3
"""Runs the measures beside their floors, alternating within one run, in fresh folders. Absolute times mean nothing from
one machine to the next; the ratios do."""

import argparse
import json
import os
import pathlib
import resource
import shlex
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
import urllib.parse

import body_extraction

ROOT = pathlib.Path(__file__).resolve().parent.parent
BIN = ROOT / "build" / "release" / "bin"
ON_MAC = sys.platform == "darwin"
# In a home.
SUPPORT = "Library/Application Support/Corvane" if ON_MAC else ".local/share/Corvane"
SETTINGS = "Library/Preferences/app.corvane.Corvane.json" if ON_MAC else ".config/Corvane.conf"


def run(command, stdout=subprocess.PIPE):
    """Wall seconds, standard output and peak memory in bytes of a program that must succeed."""
    start = time.perf_counter()
    with tempfile.TemporaryFile() as errors:
        child = subprocess.Popen([str(part) for part in command], stdout=stdout, stderr=errors)
        output = child.stdout.read() if child.stdout else b""
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
        if child.returncode not in (0, 3):
            errors.seek(0)
            sys.exit(f"{command}: exit {child.returncode}\n{errors.read()[-2000:].decode(errors='replace')}")
    return time.perf_counter() - start, output, usage.ru_maxrss * (1 if ON_MAC else 1024)


def printed_seconds(command):
    """Seconds that the program itself measured and printed."""
    _, output, peak = run(command)
    return float(output), peak


def processor_seconds(command):
    """Of a program and of all that it started, and its peak memory."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    _, _, peak = run(command, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, peak


def make_archive(root, count):
    """An archive of generated mail, as a run would have left it."""
    folder = root / "2023" / "account"
    folder.mkdir(parents=True)
    records = []
    for path in map(pathlib.Path, body_extraction.make_messages(folder, count)):
        records.append({
            "id": f"mid:{path.stem}@example.com", "subject": f"关于第 {path.stem} 次会议的通知",
            "sender": "张三 <zhang@example.com>", "recipients": "reader@example.org", "mailbox": "INBOX",
            "sizeBytes": path.stat().st_size, "attachmentNames": [], "emlRelativePath": str(path.relative_to(root)),
            "archivedAt": "2024-01-01T00:00:00Z", "sourceCopyCount": 1, "sourceCopiesIdentical": True})
    index = {"createdAt": "2024-01-01T00:00:00Z", "updatedAt": "2024-01-01T00:00:00Z", "records": records}
    (root / "archive-index.json").write_text(json.dumps(index, ensure_ascii=False), encoding="utf-8")


def make_maildir(root, archive):
    for name in ("cur", "new", "tmp"):
        (root / name).mkdir(parents=True)
    for path in archive.rglob("*.eml"):
        shutil.copy(path, root / "cur" / f"{path.stem}:2,S")


class Bench:
    def __init__(self, work, rounds, messages):
        self.work = work
        self.rounds = rounds
        self.messages = messages
        self.results = []
        self.counter = 0

    def fresh(self, name):
        """A path that didn't exist before: creating files in a tree just deleted is slow."""
        self.counter += 1
        path = self.work / f"{name}-{self.counter}"
        return self.fresh(name) if path.exists() else path  # of an earlier run in a folder that is kept

    def compare(self, name, ours, floor, goal, per_message_of=None):
        times, floors, peaks = [], [], []
        for _ in range(self.rounds):
            seconds, _ = floor()
            floors.append(seconds)
            seconds, peak = ours()
            times.append(seconds)
            peaks.append(peak)
        result = {
            "measure": name,
            "ours": float(f"{statistics.median(times):.4g}"),
            "floor": float(f"{statistics.median(floors):.4g}"),
            "ratio": round(statistics.median(times) / statistics.median(floors), 3),
            "goal": goal,
            "peakBytes": max(peaks),
        }
        if per_message_of:
            result["peakBytesPerMessage"] = round(max(peaks) / per_message_of)
        self.results.append(result)
        print(f"{name}: {result['ours']} s, floor {result['floor']} s, ratio {result['ratio']}", file=sys.stderr)

    def store(self, count, *options):
        home = self.work / "".join([f"home-{count}", *options])
        if not home.exists():
            maker = [sys.executable, ROOT / "tools" / "make_sample_store.py", "--messages", count, "--no-manifest",
                     "--quiet", *options, home]
            run(maker)
        return home

    def refresh(self):
        self.refresh_of(self.store(self.messages), "")
        self.refresh_of(self.store(self.messages, "--inferred-accounts"), ", addresses inferred")

    def refresh_of(self, home, kind):
        index = home / "Library/Mail/V10/MailData/Envelope Index"
        query = run([BIN / "print_candidate_query"])[1].decode()
        target = self.work / "rows.json"

        def floor():
            with open(target, "wb") as output:
                seconds, _, peak = run(["/usr/bin/sqlite3", "-readonly", "-json", index, query], stdout=output)
            return seconds, peak

        def ours(command):
            def measured():
                shutil.rmtree(home / SUPPORT, ignore_errors=True)
                if command == "scan":
                    run([BIN / "corvane-cli", "--home", home, "--json", "accounts"])
                _, output, peak = run([BIN / "corvane-cli", "--home", home, "--json", command])
                return json.loads(output)["scanSeconds"], peak
            return measured

        def stages(command):
            if ON_MAC:
                return  # they are told apart by what only Linux shows of a process
            _, output, _ = run([BIN / "measure_refresh", command, home])
            self.results[-1]["stages"] = json.loads(output.splitlines()[-1])

        goal = "<= 1.0" if os.cpu_count() > 1 else "<= 1.35"
        self.compare(f"scan of {self.messages} messages to the list{kind}", ours("scan"), floor, goal, self.messages)
        stages("scan")
        self.compare(f"refresh of {self.messages} messages{kind}", ours("refresh"), floor, goal, self.messages)
        stages("refresh")

    def archive(self):
        count = 5000
        source = self.work / "emlx"
        if not source.exists():
            run([BIN / "measure_archive_run", "make", count, source])
        self.compare(
            f"archive run of {count} files of 6 KB",
            lambda: printed_seconds([BIN / "measure_archive_run", "run", source, self.fresh("archive")]),
            lambda: printed_seconds([BIN / "floor_archive_writes", source, self.fresh("floor")]), "<= 1.1")

    def proof(self):
        count = min(self.messages, 100000)
        home, archive = self.store(count), self.work / f"proven-{count}"
        cli = [BIN / "corvane-cli", "--home", home, "--json"]
        readings = home / SUPPORT / "proof-readings.sqlite"
        if not archive.exists():
            run([*cli, "refresh"])
            run([*cli, "archive", "--to", archive, "--no-index"])
        originals = [pathlib.Path(urllib.parse.unquote(message["fileURL"].removeprefix("file://")))
                     for message in json.loads(run([*cli, "messages"])[1])]
        files = self.work / "proof-files"
        files.write_bytes(b"\0".join(os.fsencode(path) for path in [*originals, *sorted(archive.rglob("*.eml"))]))

        def cooled(call):
            def measured():
                os.sync()
                pathlib.Path("/proc/sys/vm/drop_caches").write_text("3", encoding="ascii")
                return call()
            return measured

        hashing = "sha256sum" if shutil.which("sha256sum") else "shasum -a 256"

        def floor():
            seconds, _, peak = run(["sh", "-c", f"xargs -0 {hashing} < {shlex.quote(str(files))} > /dev/null"])
            return seconds, peak

        def ours():
            readings.unlink(missing_ok=True)
            seconds, _, peak = run([*cli, "prove"])
            return seconds, peak

        def again(command):
            return lambda: run([*cli, command])[::2]

        floor()
        self.compare(f"proof of {count} messages, both sides, warm", ours, floor, "<= 1.5")
        if os.access("/proc/sys/vm/drop_caches", os.W_OK):
            self.compare(f"proof of {count} messages, both sides, cold", cooled(ours), cooled(floor), "<= 1.5")
        self.compare(f"proof of {count} messages, nothing changed, beside the figures alone", again("prove"),
                     again("stats"), "<= 1 s for 100,000")

    def cache(self):
        count = 500000
        cache = self.work / "cache.json"
        if not cache.exists():
            run([BIN / "measure_scan_cache", "make", count, cache])
        self.compare(f"scan cache of {count} messages, read",
                     lambda: printed_seconds([BIN / "measure_scan_cache", "read", cache]),
                     lambda: printed_seconds([BIN / "floor_scan_cache_read", cache]), "<= 1.5", count)
        self.compare(f"scan cache of {count} messages, written",
                     lambda: printed_seconds([BIN / "measure_scan_cache", "write", cache, self.fresh("cache")]),
                     lambda: printed_seconds([BIN / "floor_scan_cache_write", cache, self.fresh("cache")]), "<= 1.3",
                     count)

    def index(self):
        count = 3000
        archive, home = self.work / "bodies", self.work / "bodies-home"
        if not archive.exists():
            make_archive(archive, count)
            (home / SETTINGS).parent.mkdir(parents=True)
            settings = {"corvaneKnownLocationRoots": [str(archive)]}
            (home / SETTINGS).write_text(json.dumps(settings), encoding="utf-8")

        def ours():
            seconds, peak = processor_seconds([BIN / "corvane-cli", "--home", home, "--json", "index", "--force"])
            return seconds / count, peak

        def insert():
            database = next((home / SUPPORT).glob("search-*.sqlite"))
            return printed_seconds([BIN / "floor_search_index", "insert", database, count, self.fresh("rows")])

        def mu(*settings):
            root = self.fresh("mu")
            make_maildir(root / "mail", archive)
            run(["mu", "init", f"--muhome={root / 'home'}", f"--maildir={root / 'mail'}"])
            seconds, peak = processor_seconds(["env", *settings, "mu", "index", f"--muhome={root / 'home'}"])
            return seconds / count, peak

        ours()
        self.compare("body index, processor a message, insert of the rows", ours, insert, "1.4 ms")
        if shutil.which("mu"):
            self.compare("body index, processor a message, beside mu", ours, lambda: mu("XAPIAN_CJK_NGRAM=1"), "< 1")
            # Without the setting it takes a run of Chinese for one word, and a search in it finds nothing.
            self.compare("body index, beside mu without Chinese", ours, mu, "")
        else:
            print("body index beside mu: skipped, there is no mu here (package maildir-utils)", file=sys.stderr)

    def search(self):
        count = 100000
        home = self.work / f"search-{count}"
        if not home.exists():
            home.mkdir()
            run([BIN / "measure_search_index", "make", count, home])
        database = run([BIN / "measure_search_index", "path", home])[1].decode().strip()
        for name, text, mode, rounds, way, way_rounds, goal in (
                ("a rare word", "zebraquark", "search", 200, "trigram", 200, "<= 2"),
                ("3 rare Chinese characters", "罕见词", "search", 200, "trigram", 200, "<= 2"),
                ("what most rows hold", "kind regards", "search", 2, "scan", 2, "<= 1.2"),
                ("2 rare Chinese characters", "罕见", "again", 200, "scan", 2, "<= 0.05"),
                ("the first 2 since a write", "罕见", "search", 1, "scan", 2, "<= 0.5"),
                ("2 Chinese characters of every fifth", "一丁", "again", 5, "scan", 2, "<= 0.5"),
                ("2 letters of most", "re", "again", 2, "scan", 2, "<= 1.2")):
            self.compare(
                f"search of {count} messages for {name}",
                lambda text=text, mode=mode, rounds=rounds: printed_seconds(
                    [BIN / "measure_search_index", mode, home, rounds, text]),
                lambda text=text, way=way, rounds=way_rounds: printed_seconds(
                    [BIN / "floor_search_index", way, database, rounds, text]), goal)
        self.compare("body by id", lambda: printed_seconds([BIN / "measure_search_index", "body", home, 20000]),
                     lambda: printed_seconds([BIN / "floor_search_index", "body", database, 20000]), "50 us")

    def commands(self):
        """Ten archives, as a person asks them who has typed one command."""
        archives, count = 10, 2000
        home, mail = self.work / "commands-home", self.work / "commands-mail"
        cli = [BIN / "corvane-cli", "--home", home, "--json"]
        roots = [self.work / "commands" / str(number) for number in range(archives)]
        if not home.exists():
            for number, root in enumerate(roots):
                make_archive(root, count)
                index = json.loads((root / "archive-index.json").read_text(encoding="utf-8"))
                for record in index["records"]:
                    record["id"] = f"mid:{number}.{record['id'][4:]}"
                    path = root / record["emlRelativePath"]
                    path.write_bytes(f"Message-ID: <{record['id'][4:]}>\n".encode() + path.read_bytes())
                index["createdAt"] = f"20{number:02}-01-01T00:00:00Z"
                (root / "archive-index.json").write_text(json.dumps(index, ensure_ascii=False), encoding="utf-8")
            (home / SETTINGS).parent.mkdir(parents=True)
            settings = {"corvaneKnownLocationRoots": [str(root) for root in roots]}
            (home / SETTINGS).write_text(json.dumps(settings), encoding="utf-8")
            run([*cli, "index"])
            for number, root in enumerate(roots):
                make_maildir(mail / str(number), root)
        time.sleep(4)  # what was written a moment ago isn't relied on
        run([*cli, "search", "会议"])
        time.sleep(4)
        run([*cli, "search", "会议"])
        entry = json.loads(run([*cli, "search", "--details", "--limit", "1", "会议"])[1])[0]["entryID"]
        for name, command in (("search of 2 characters", ["search", "--limit", "20", "--details", "会议"]),
                              ("search of a word", ["search", "--limit", "20", "--details", "regards"]),
                              ("show", ["show", entry])):
            self.compare(f"{name}, {archives * count} mails",
                         lambda command=command: processor_seconds([*cli, *command]), lambda: (0.1, 0), "<= 1, 60 MB")
        find = lambda: processor_seconds([*cli, "search", "--limit", "20", "--details", "会议"])
        if shutil.which("mu"):
            mu = f"--muhome={self.work / 'commands-mu'}"
            run(["mu", "init", mu, f"--maildir={mail}"])
            run(["env", "XAPIAN_CJK_NGRAM=1", "mu", "index", mu])
            self.compare("search beside mu find", find, lambda: processor_seconds(
                ["env", "XAPIAN_CJK_NGRAM=1", "mu", "find", mu, "--maxnum=20", "会议"]), "")
        if shutil.which("notmuch"):
            settings = self.work / "notmuch-config"
            settings.write_text(f"[database]\npath={mail}\n[user]\nprimary_email=a@example.com\n", encoding="utf-8")
            cjk = ["env", f"NOTMUCH_CONFIG={settings}", "XAPIAN_CJK_NGRAM=1", "notmuch"]
            run([*cjk, "new"])
            self.compare("search beside notmuch search", find, lambda: processor_seconds(
                [*cjk, "search", "--limit=20", "会议"]), "")

    def library(self):
        count = 500000

        def ours(mode):
            return lambda: printed_seconds([BIN / "measure_library", mode, count])

        def floor(mode):
            return lambda: printed_seconds([BIN / "floor_library", mode, count])

        self.compare(f"library index of {count} entries", ours("index"), floor("index"), "<= 2", count)
        self.compare(f"threads of {count} entries", ours("threads"), floor("threads"), "<= 2")
        # The floor is what a person may wait for a text to show.
        self.compare("body of 1 MB split", lambda: printed_seconds([BIN / "measure_library", "split", 1]),
                     lambda: (0.05, 0), "<= 1")

    def presence(self):
        count = 500000
        home = self.work / f"presence-{count}"
        if not home.exists():
            run([BIN / "measure_presence", "make", count, home])
        index = home / "Library/Mail/V10/MailData/Envelope Index"
        query = ("SELECT DISTINCT g.message_id_header AS messageId FROM messages m LEFT JOIN message_global_data g "
                 "ON g.message_id = m.message_id WHERE g.message_id_header IS NOT NULL AND g.message_id_header != '' "
                 "AND m.mailbox NOT IN (2);")
        floor = ["sh", "-c", f"/usr/bin/sqlite3 -readonly -json {shlex.quote(str(index))} {shlex.quote(query)} > "
                 f"{shlex.quote(str(self.work / 'presence-rows'))}"]

        def ours(mode):
            def measured():
                shutil.rmtree(home / ".local", ignore_errors=True)
                return printed_seconds([BIN / "measure_presence", mode, count, home])
            return measured

        self.compare(f"presence of {count} entries", ours("wall"), lambda: run(floor)[::2], "<= 1.35", count)
        self.compare(f"presence of {count} entries, processor", ours("processor"), lambda: processor_seconds(floor), "",
                     count)

    def list(self):
        rows = 100000

        def frames(mode, way):
            _, output, peak = run([BIN / "measure_mail_list", mode, rows])
            return json.loads(output)[way]["p95"] / 1000, peak

        for way in ("wheel", "pages"):
            self.compare(f"95 of 100 frames of {rows} rows, by {way}", lambda way=way: frames("ours", way),
                         lambda way=way: frames("floor", way), "16 ms")

    def start(self):
        home = self.fresh("start")
        support = home / SUPPORT
        support.mkdir(parents=True)
        run([BIN / "measure_scan_cache", "make", 500000, support / "last-scan-cache.json"])
        without = self.fresh("nothing")
        without.mkdir()
        self.compare("first frame over a scan cache of 500000 messages",
                     lambda: printed_seconds([BIN / "measure_window", "start", home]),
                     lambda: printed_seconds([BIN / "measure_window", "empty"]), "<= 1.3")
        self.compare("first frame over no cache at all",
                     lambda: printed_seconds([BIN / "measure_window", "start", without]),
                     lambda: printed_seconds([BIN / "measure_window", "empty"]), "")

    def window(self):
        """The longest steps of the main thread; the floor is what a frame at 60 Hz allows."""
        store = self.store(self.messages)
        shutil.rmtree(store / SUPPORT, ignore_errors=True)
        _, output, peak = run([BIN / "measure_window", "steps", store, self.fresh("window") / "archive"])
        for stage, steps in json.loads(output).items():
            longest = steps["processor"]["max"] / 1000
            self.results.append({"measure": f"window, longest step: {stage}", "ours": longest, "floor": 0.016,
                                 "ratio": round(longest / 0.016, 3), "goal": "<= 1", "peakBytes": peak})
            print(self.results[-1]["measure"], longest, ", ".join(steps["stalls"]))

    def table(self):
        print(f"{'measure':58} {'ours':>9} {'floor':>9} {'ratio':>7} {'goal':>8} {'peak MB':>8} {'B/message':>10}")
        for row in self.results:
            per_message = row.get("peakBytesPerMessage", "")
            print(f"{row['measure']:58} {row['ours']:>9} {row['floor']:>9} {row['ratio']:>7} {row['goal']:>8} "
                  f"{row['peakBytes'] // 1000000:>8} {per_message:>10}")
            if "stages" in row:
                print("    reached at: " + ", ".join(f"{name} {value}" for name, value in row["stages"].items()))
        print(json.dumps(self.results, ensure_ascii=False))


def main():
    measures = ["refresh", "archive", "proof", "cache", "index", "search", "commands", "library", "presence", "list",
                "start", "window"]
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("measure", nargs="*", choices=[[], *measures], help="all when none is named")
    parser.add_argument("--messages", type=int, default=200000, help="messages of the refresh")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--work", type=pathlib.Path, help="a folder to keep between runs")
    options = parser.parse_args()
    work = options.work or pathlib.Path(tempfile.mkdtemp(prefix="corvane-bench-"))
    work.mkdir(parents=True, exist_ok=True)
    try:
        bench = Bench(work, options.rounds, options.messages)
        for name in options.measure or measures:
            getattr(bench, name)()
        bench.table()
    finally:
        if not options.work:
            shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    main()
