#!/usr/bin/env python3
"""Stands for the linker of scripts/check-macos: every function and variable of ours that the objects and archives of
a program ask for has to be defined in one of them. Makes an empty file in place of the program.
  check_symbols.py PROGRAM OBJECT_OR_ARCHIVE..."""

import pathlib
import subprocess
import sys

# The namespace, as it stands in the names of its symbols.
OURS = "7corvane"


def symbols(files, kind):
    run = subprocess.run(["llvm-nm-19", kind, "--just-symbol-name", "--quiet", *files], check=True, capture_output=True,
                         text=True)
    # Names of files and blank lines stand between; a symbol of Mach-O begins with an underscore.
    return {line for line in run.stdout.splitlines() if line.startswith("_") and OURS in line}


def main():
    program, *inputs = sys.argv[1:]
    files = [name for name in inputs if name.endswith((".o", ".a")) and pathlib.Path(name).exists()]
    missing = symbols(files, "--undefined-only") - symbols(files, "--defined-only")
    if missing:
        names = subprocess.run(["llvm-cxxfilt-19", "--strip-underscore"], input="\n".join(sorted(missing)), capture_output=True, text=True)
        print(f"{program}: used, and defined nowhere:", file=sys.stderr)
        print("\n".join(f"  {name}" for name in names.stdout.splitlines()), file=sys.stderr)
        return 1
    pathlib.Path(program).write_bytes(b"")
    return 0


if __name__ == "__main__":
    sys.exit(main())
