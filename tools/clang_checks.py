#!/usr/bin/env python3
"""Reads the sources of src/ with clang, without making code of them and without the precompiled header: a header that
isn't complete by itself, and a guarded member that is used without its mutex, are faults. A header is read by its own
source, which includes it first; one without a source by itself. Only what has changed since the last run is read again.

    tools/clang_checks.py BUILD [--all]    BUILD is a configured build folder

The folders that use Qt are read with --all only: Qt's headers make reading slow, and hold no locks of ours."""

import argparse
import json
import pathlib
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = ROOT / "src"
CLANG = "clang++-19"
USING_QT = {"model", "cli", "screens", "app"}
# The standard library of g++ 12 calls what it deprecates, and RapidJSON holds a template that no compiler accepts once
# it reads its body: both are no faults of ours.
WARNINGS = ("-Wthread-safety -Wthread-safety-beta -Wno-unknown-warning-option -Wno-deprecated-declarations "
            "-Wno-pragma-once-outside-header -Wno-unused-const-variable -fdelayed-template-parsing -Wno-delayed-template-parsing-in-cxx20")
RULES = """rule read
  command = {clang} -fsyntax-only -x c++ $flags {warnings} -MD -MF $out.d -MT $out $in && touch $out
  deps = gcc
  depfile = $out.d
  description = Reading $in
"""


def flags_of(command):
    """What the compiler was told, without files, output and the precompiled header."""
    words = iter(shlex.split(command)[1:])
    flags = []
    for word in words:
        if word in ("-o", "-include", "-c"):
            next(words)
        elif word in ("-isystem", "-I"):
            flags += [word, next(words)]
        elif word.startswith(("-I", "-D", "-std", "-m", "-f", "-W", "-isystem")) and word != "-Winvalid-pch":
            flags.append(word)
    return flags


def commands_by_source(build):
    entries = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    table = {}
    for entry in entries:
        source = pathlib.Path(entry["file"]).resolve()
        if source.is_relative_to(SOURCES):
            table.setdefault(source, flags_of(entry["command"].replace("ccache ", "", 1)))
    return table


def files_to_read(commands, with_qt):
    """Each file with its flags. A header has those of any source of its folder of src/."""
    by_folder = {source.relative_to(SOURCES).parts[0]: flags for source, flags in commands.items()}
    files = dict(commands)
    for header in SOURCES.rglob("*.h"):
        folder = header.relative_to(SOURCES).parts[0]
        if header.with_suffix(".cpp") not in commands and folder in by_folder:
            files[header] = by_folder[folder]
    return {path: flags for path, flags in files.items()
            if with_qt or path.relative_to(SOURCES).parts[0] not in USING_QT}


def ninja_text(files):
    lines = [RULES.format(clang=CLANG, warnings=WARNINGS)]
    for path, flags in sorted(files.items()):
        stamp = str(path.relative_to(SOURCES)).replace("/", "+") + ".read"
        lines += [f"build {stamp}: read {path}", f"  flags = {shlex.join(flags)}"]
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--all", action="store_true")
    given = parser.parse_args()
    folder = given.build / "clang"
    folder.mkdir(parents=True, exist_ok=True)
    files = files_to_read(commands_by_source(given.build), given.all)
    (folder / "build.ninja").write_text(ninja_text(files), encoding="utf-8")
    return subprocess.run(["ninja", "-C", folder, "-k", "0", "--quiet"], check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
