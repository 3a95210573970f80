#!/usr/bin/env python3
"""Runs the fuzz targets over their seeds and what earlier runs found, and prints what each has done. Seeds are those of
fuzz/corpus, which are kept, and those that make_seeds.py makes anew. Whatever a target makes of its files lies in
build/fuzz: its grown corpus, findings/ with the inputs that ended a run, logs/ with what it printed."""

import argparse
import dataclasses
import datetime
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import threading
import time

import make_seeds

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "fuzz"
BINARIES = BUILD / "fuzz"
FINDINGS = BUILD / "findings"
TOTALS = BUILD / "long_run.json"
WORKER = "worker"
ROUND_SECONDS = 120
QUICK = 10_000  # inputs in a second of processor
KEPT_INPUTS = 12
LONGEST_KEPT = 8192


@dataclasses.dataclass
class Result:
    """What a target did; seconds are those of the processor, which other work on the machine doesn't stretch."""

    inputs: int = 0
    seconds: float = 0.0
    edges: int = 0
    findings: int = 0

    def add(self, other):
        self.inputs += other.inputs
        self.seconds += other.seconds
        self.edges = max(self.edges, other.edges)
        self.findings += other.findings

    @property
    def speed(self):
        return self.inputs / self.seconds if self.seconds else 0.0


def names():
    binaries = sorted(BINARIES.glob("fuzz_*"))
    return [path.name.removeprefix("fuzz_") for path in binaries if path.is_file() and os.access(path, os.X_OK)] + [WORKER]


def worker_command(seconds, seed):
    return [sys.executable, ROOT / "fuzz" / "worker_mutations.py", f"--seconds={seconds}", f"--seed={seed}",
            f"--findings={FINDINGS}"]


def target_command(name, seconds, seed):
    grown = BUILD / "corpus" / name
    grown.mkdir(parents=True, exist_ok=True)
    seeds = [folder for folder in (ROOT / "fuzz" / "corpus" / name, BUILD / "seeds" / name) if folder.is_dir()]
    words = ROOT / "fuzz" / "dictionaries" / f"{name}.dict"
    return [BINARIES / f"fuzz_{name}", f"-max_total_time={seconds}", f"-seed={seed}", "-timeout=10",
            "-rss_limit_mb=2048", "-print_final_stats=1", f"-artifact_prefix={FINDINGS}/{name}-",
            *([f"-dict={words}"] if words.exists() else []), grown, *seeds]


def run(name, seconds, seed):
    """One run of a target, its temporary files in memory and removed however it ends."""
    command = worker_command(seconds, seed) if name == WORKER else target_command(name, seconds, seed)
    log = BUILD / "logs" / f"{name}.txt"
    log.parent.mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="corvane-fuzz-", dir="/dev/shm") as folder, open(log, "wb") as output:
        child = subprocess.Popen([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=output,
                                 stderr=subprocess.STDOUT, env={**os.environ, "TMPDIR": folder})
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
    said = log.read_text(errors="replace")
    inputs = re.findall(r"stat::number_of_executed_units: (\d+)", said) or re.findall(r"^#(\d+)", said, re.M)
    edges = [int(number) for number in re.findall(r" cov: (\d+)", said)]
    if child.returncode:
        print(f"{name}: a finding in {FINDINGS}, see {log}", file=sys.stderr, flush=True)
    return Result(int(inputs[-1]) if inputs else 0, usage.ru_utime + usage.ru_stime, max(edges, default=0),
                  int(child.returncode != 0))


def print_table(results):
    print(f"{'target':16} {'inputs':>12} {'seconds':>8} {'a second':>9} {'edges':>6} {'findings':>8}")
    for name, each in sorted(results.items()):
        print(f"{name:16} {each.inputs:12,} {each.seconds:8.0f} {each.speed:9,.0f} {each.edges:6} {each.findings:8}")
    total = sum(each.inputs for each in results.values())
    print(f"{'all':16} {total:12,} {sum(each.seconds for each in results.values()):8.0f}", flush=True)
    return total


def short_run(targets, seconds):
    results = {}
    for name in targets:
        results[name] = run(name, seconds, seed=1)
    print_table(results)
    return sum(each.findings for each in results.values())


def totals():
    return {name: Result(**fields) for name, fields in json.loads(TOTALS.read_text()).items()} if TOTALS.exists() else {}


class LongRun:
    """Rounds of the targets until so many inputs have been run, those of earlier long runs included. One process goes
    through all targets, the other through the quick ones, which get far for what they cost."""

    def __init__(self, targets, inputs, until):
        self.targets, self.inputs, self.until = targets, inputs, until
        self.results, self.at_work, self.lock, self.seed = totals(), set(), threading.Lock(), int(time.time())

    def run(self):
        tracks = [threading.Thread(target=self.track, args=(quick,)) for quick in (False, True)]
        for track in tracks:
            track.start()
        for track in tracks:
            track.join()
        print_table(self.results)
        return sum(each.findings for each in self.results.values())

    def track(self, quick):
        queue = []
        while not self.is_over():
            queue = queue or [name for name in self.targets if not quick or self.is_quick(name)] or list(self.targets)
            name = queue.pop(0)
            seed = self.begin(name)
            if seed is None:
                time.sleep(1)  # the other process is at it
            else:
                self.add(name, run(name, int(min(ROUND_SECONDS, max(self.until - time.time(), 1))), seed))

    def begin(self, name):
        with self.lock:
            if name in self.at_work:
                return None
            self.at_work.add(name)
            self.seed += 1
            return self.seed

    def is_over(self):
        return sum(each.inputs for each in self.results.values()) >= self.inputs or time.time() > self.until

    def is_quick(self, name):
        return name in self.results and self.results[name].speed > QUICK

    def add(self, name, result):
        with self.lock:
            self.at_work.remove(name)
            self.results.setdefault(name, Result()).add(result)
            TOTALS.write_text(json.dumps({name: dataclasses.asdict(each) for name, each in self.results.items()}, indent=1))


def features_by_input(name, folder):
    """The features that each input of the target's grown corpus and seeds reaches, by its path."""
    inputs = [path for path in (BUILD / "corpus" / name, BUILD / "seeds" / name) if path.is_dir()]
    control = folder / "control"
    subprocess.run([BINARIES / f"fuzz_{name}", "-merge=1", f"-merge_control_file={control}", "-timeout=10", folder, *inputs],
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env={**os.environ, "TMPDIR": "/dev/shm"})
    lines = control.read_text().splitlines()
    count = int(lines[0])
    features = {int(line.split()[1]): set(line.split()[2:]) for line in lines if line.startswith("FT ")}
    return {lines[2 + number]: found for number, found in features.items() if number < count}


def chosen(features):
    """Few inputs that reach most: each time the one that adds most, short ones first."""
    reached, left, paths = set(), dict(features), []
    while left and len(paths) < KEPT_INPUTS:
        path = max(left, key=lambda each: (len(left[each] - reached) / (200 + os.path.getsize(each)) ** 0.5, each))
        reached |= left.pop(path)
        if os.path.getsize(path) <= LONGEST_KEPT:
            paths.append(pathlib.Path(path))
    return paths


def minimise(targets):
    for name in targets:
        kept = ROOT / "fuzz" / "corpus" / name
        kept.mkdir(parents=True, exist_ok=True)
        with tempfile.TemporaryDirectory() as folder:
            paths = chosen(features_by_input(name, pathlib.Path(folder)))
            for old in kept.glob("grown-*"):
                old.unlink()
            for path in paths:
                data = path.read_bytes()
                (kept / ("grown-" + hashlib.sha256(data).hexdigest()[:8])).write_bytes(data)
        print(f"{name}: {len(paths)} inputs")


def clock(text):
    """The next time the clock shows HH:MM, as seconds since 1970."""
    now = datetime.datetime.now()
    wanted = now.replace(hour=int(text[:2]), minute=int(text[3:]), second=0)
    return (wanted if wanted > now else wanted + datetime.timedelta(days=1)).timestamp()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("words", nargs="*", metavar="SECONDS TARGET",
                        help="how long each target runs, except in a long run, and which (default all)")
    parser.add_argument("--long", type=int, metavar="INPUTS", help="as many over all targets, two at a time")
    parser.add_argument("--until", type=clock, default=float("inf"), metavar="HH:MM", help="end a long run then at the latest")
    parser.add_argument("--minimise", action="store_true", help="put the few inputs that reach most into fuzz/corpus")
    options = parser.parse_args()
    seconds = None if options.minimise or options.long else int(options.words.pop(0)) if options.words else parser.error("how long?")
    targets = options.words or names()
    unknown = set(targets) - set(names())
    if unknown:
        parser.error(f"no such target: {', '.join(sorted(unknown))}")
    FINDINGS.mkdir(parents=True, exist_ok=True)
    make_seeds.make(BUILD / "seeds")
    if options.minimise:
        return minimise([name for name in targets if name != WORKER])
    findings = LongRun(targets, options.long, options.until).run() if options.long else short_run(targets, seconds)
    sys.exit(1 if findings else 0)


if __name__ == "__main__":
    main()
