#!/usr/bin/env python3
"""Checks what a package is about to carry: programs that are hardened as cmake/Hardening.cmake asks, without a path of the
machine that built them.   tools/check_programs.py FOLDER PROGRAM...   FOLDER: that of the checkout. Linux."""

import pathlib
import re
import subprocess
import sys

# What readelf prints of a program, and what has to stand in it.
PROPERTIES = (
    ("-h", r"Type:\s+DYN", "doesn't load at an address of chance"),
    ("-l", r"GNU_RELRO", "leaves its tables writable"),
    ("-l", r"GNU_STACK\s(?:\s*0x\w+)+\s+RW\s", "has a stack that can be run"),
    ("-d", r"BIND_NOW|Flags:.*\bNOW\b", "binds its functions late"),
    ("--dyn-syms", r"__stack_chk_fail", "has no guard of its stack"),
    ("--dyn-syms", r"__(?:mem|str|read|v?s?n?printf)\w*_chk", "has no checked copies (_FORTIFY_SOURCE)"),
)


def faults(program, folder):
    for option, wanted, fault in PROPERTIES:
        told = subprocess.run(["readelf", "--wide", option, program], stdout=subprocess.PIPE, text=True, check=True).stdout
        if not re.search(wanted, told):
            yield fault
    if str(folder).encode() in program.read_bytes():
        yield f"has a path below {folder}"


def main():
    folder, *programs = map(pathlib.Path, sys.argv[1:])
    found = [f"{program.name} {fault}" for program in programs for fault in faults(program, folder.resolve())]
    sys.exit("\n".join(found) or None)


if __name__ == "__main__":
    main()
