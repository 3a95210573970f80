#!/usr/bin/env python3
"""Plants known faults one at a time and shows that the tests notice each.

    tools/plant_faults.py [--tree DIR] [--preset dev] [--only TEXT] [--list]

A fault that isn't noticed is a hole in the tests: the status is 1, and it is named. The tree is left as it was, also
after an interruption. Needs a built tree; each fault costs a build of one source and of the tests named with it.
"""

import argparse
import pathlib
import re
import subprocess
import sys

from planted_faults import FAULTS


class Tree:
    def __init__(self, root, preset):
        self.root = root
        self.build = root / "build" / preset

    def source(self, fault):
        hits = list((self.root / "src").rglob(fault.file))
        if len(hits) != 1:
            raise SystemExit(f"{fault.name}: {len(hits)} files are called {fault.file}")
        return hits[0]

    def program(self, test):
        hits = [path for path in (self.build / "tests").rglob(f"test_{test}") if path.is_file()]
        return hits[0] if hits else None

    def make(self, tests):
        targets = [f"test_{test}" for test in tests]
        return subprocess.run(["ninja", "-C", self.build, *targets], capture_output=True, text=True)

    def failure(self, test):
        """What says that the test program fails: its first failing test. None when it passes."""
        command = [self.program(test), "--gtest_brief=1", "--gtest_fail_fast"]
        environment = {"QT_QPA_PLATFORM": "offscreen", "PATH": "/usr/bin:/bin:/usr/local/bin", "HOME": "/root"}
        try:
            done = subprocess.run(command, capture_output=True, timeout=300, env=environment, cwd=self.root)
        except subprocess.TimeoutExpired:
            return "no end in 300 s"
        if done.returncode == 0:
            return None
        failed = re.search(rb"\[  FAILED  \] ([\w./]+)", done.stdout)
        return failed.group(1).decode() if failed else f"status {done.returncode}"


def verdict(tree, fault):
    """'noticed', 'compiler' where the fault doesn't build, or 'MISSED'."""
    source = tree.source(fault)
    sound = source.read_text(encoding="utf-8")
    if sound.count(fault.old) != 1:
        return f"GONE: its text stands {sound.count(fault.old)} times in {fault.file}"
    tests = [test for test in fault.tests if tree.program(test)]
    try:
        source.write_text(sound.replace(fault.old, fault.new), encoding="utf-8")
        if (made := tree.make(tests)).returncode != 0:
            return "COMPILER: " + (made.stdout.split("error:")[1:] or [made.stdout[-200:]])[0].split("\n")[0]
        found = ((test, tree.failure(test)) for test in tests)
        return next((f"noticed by {test}: {failure}" for test, failure in found if failure), "MISSED")
    finally:
        source.write_text(sound, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--tree", type=pathlib.Path, default=pathlib.Path(__file__).resolve().parent.parent)
    parser.add_argument("--preset", default="dev")
    parser.add_argument("--only", default="", help="faults whose name or file holds this text")
    parser.add_argument("--list", action="store_true")
    options = parser.parse_args()
    chosen = [fault for fault in FAULTS if options.only in fault.name or options.only in fault.file]
    if options.list:
        print("\n".join(f"{fault.file}: {fault.name}" for fault in chosen))
        return 0
    tree = Tree(options.tree, options.preset)
    missed = 0
    for fault in chosen:
        outcome = verdict(tree, fault)
        missed += not outcome.startswith("noticed")
        print(f"{fault.file}: {fault.name}: {outcome}", flush=True)
    print(f"{len(chosen) - missed} noticed, {missed} not")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
