#!/usr/bin/env python3
"""Checks what the compiler doesn't: includes go only along the arrows between folders, no Qt below the model, oneTBB
only behind its one header, and no include climbs out of its folder."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent / "src"

# Each folder sees itself and these.
ARROWS = {
    "text": set(),
    "platform": {"text"},
    "records": {"text", "platform"},
    "mime": {"text", "platform", "records"},
    "worker": {"text", "platform", "records"},
    "mailstore": {"text", "platform", "records", "mime", "worker"},
    "search": {"text", "platform", "records"},
    "archive": {"text", "platform", "records", "mime", "worker", "search"},
    "listing": {"text", "platform", "records", "mailstore"},
    "locations": {"text", "platform", "records", "search", "archive"},
    "library": {"text", "platform", "records"},
    "model": {"text", "platform", "records", "mime", "worker", "mailstore", "search", "archive", "listing", "locations",
              "library"},
    "cli": {"text", "platform", "records", "archive", "listing", "locations", "library", "model"},
    "screens": {"text", "platform", "records", "archive", "listing", "locations", "library", "model"},
    "app": {"platform", "records", "model", "screens"},
}
QT_ALLOWED = {"model", "cli", "screens", "app"}
INCLUDE = re.compile(r'^\s*#include\s+([<"])([^>"]+)[>"]', re.MULTILINE)


def faults_of(path):
    folder = path.relative_to(ROOT).parts[0]
    for kind, target in INCLUDE.findall(path.read_text(encoding="utf-8")):
        first = target.split("/")[0]
        if target.startswith(".."):
            yield f"{path}: climbs out of its folder: {target}"
        elif kind == '"' and first in ARROWS and first != folder and first not in ARROWS[folder]:
            yield f"{path}: against the arrows: {target}"
        elif kind == "<" and re.match(r"Q[A-Z]", target) and folder not in QT_ALLOWED:
            yield f"{path}: Qt below the model: {target}"
        elif kind == "<" and first == "tbb" and path.name != "parallel.h":
            yield f"{path}: oneTBB without platform/parallel.h: {target}"


def main():
    files = [p for p in ROOT.rglob("*") if p.suffix in {".h", ".cpp", ".mm"}]
    if not files:
        print("no sources found", file=sys.stderr)
        return 1
    faults = [fault for path in sorted(files) for fault in faults_of(path)]
    print("\n".join(faults), file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
