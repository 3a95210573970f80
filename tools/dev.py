#!/usr/bin/env python3
"""One turn of work: formats what was changed, checks arrows and includes, builds, and runs the tests that the change
touches.

    scripts/dev           the tests of the folders that hold a change
    scripts/dev --near    and those of the folders that link them, nearest first
    scripts/dev --all     everything

Changed is what differs from the last commit; where nothing does, what differs from origin/main."""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import time

import check_arrows

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "dev"
TEST_NAME = re.compile(r"add_test\(\s*NAME\s+(\w+)|corvane_test\(\s*NAME\s+(\w+)")
TARGET_NAME = re.compile(r"add_executable\(\s*(test_\w+)|corvane_test\(\s*NAME\s+(\w+)")


def output_of(*command):
    return subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout


def run(*command):
    if subprocess.run(command, cwd=ROOT, check=False).returncode != 0:
        sys.exit(f"scripts/dev: failed: {' '.join(str(word) for word in command[:4])}")


def changed_files():
    files = set(output_of("git", "diff", "--name-only", "HEAD").split("\n"))
    files |= set(output_of("git", "ls-files", "--others", "--exclude-standard").split("\n"))
    files.discard("")
    if not files:
        files = set(output_of("git", "diff", "--name-only", "origin/main...HEAD").split("\n")) - {""}
    return sorted(file for file in files if (ROOT / file).exists())


def folders_of(files):
    """The folders of src/ that the files belong to, an area of the screens for itself."""
    folders = []
    for file in files:
        parts = file.split("/")
        if parts[0] not in ("src", "tests") or len(parts) < 3:
            continue
        area = "/".join(parts[1:3]) if parts[1] == "screens" and len(parts) > 3 else parts[1]
        folders.append(area if (ROOT / "tests" / area).is_dir() else parts[1])
    return sorted(set(folders))


def with_dependents(folders):
    """The folders, then those that see them, in the order of the arrows."""
    roots = {folder.split("/")[0] for folder in folders}
    near = [name for name, below in check_arrows.ARROWS.items() if roots & set(below.split()) and name not in roots]
    return folders + near


def names(folder, pattern, prefix):
    """What the CMake files of a folder of tests, and of those in it, call their tests or targets."""
    found = []
    for listed in sorted((ROOT / "tests" / folder).rglob("CMakeLists.txt")):
        for whole, ours in pattern.findall(listed.read_text(encoding="utf-8")):
            found.append(whole or prefix + ours)
    return found


def build_and_test(folders):
    targets = [target for folder in folders for target in names(folder, TARGET_NAME, "test_")]
    tests = [test for folder in folders for test in names(folder, TEST_NAME, "") if test != "window"]
    if targets:
        run("ninja", "-C", BUILD, "--quiet", *targets)
    if tests:
        run("ctest", "--test-dir", BUILD, "--output-on-failure", "--quiet", "-j2", "-R", f"^({'|'.join(tests)})$")
    return tests


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--near", action="store_true")
    parser.add_argument("--all", action="store_true")
    given = parser.parse_args()
    start = time.monotonic()
    files = changed_files()
    sources = [file for file in files if file.endswith((".cpp", ".h"))]
    if sources:
        run("clang-format-19", "-i", *sources)
    for check in ("check_arrows.py", "check_includes.py"):
        run(sys.executable, ROOT / "tools" / check)
    if not (BUILD / "build.ninja").exists():
        run("cmake", "--preset", "dev")
    if given.all:
        run("ninja", "-C", BUILD, "--quiet")
        run("ctest", "--test-dir", BUILD, "--output-on-failure", "-j2")
        tests = ["all"]
    else:
        folders = folders_of(files)
        tests = build_and_test(with_dependents(folders) if given.near else folders)
    print(f"{len(files)} files changed, tests: {', '.join(tests) or 'none'}, {time.monotonic() - start:.1f} s")


if __name__ == "__main__":
    os.chdir(ROOT)
    main()
