#!/usr/bin/env python3
"""Checks the arrows between the folders of src/, of which the compiler holds only a part.

- A folder includes only itself and the folders below it, and so do the sub-folders of one folder. Neither goes in a
  circle: each table is in an order in which everything stands after what it uses.
- CMake links what the table says, and no folder's include reaches, through headers, one that it doesn't see.
- No Qt below the model, oneTBB only behind its one header, and no include climbs out of its folder."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent / "src"

# Each folder sees itself and these. The order is the order of the arrows.
ARROWS = {
    "text": "",
    "platform": "text",
    "thumbnail": "platform",
    "records": "text platform",
    "mime": "text platform records",
    "worker": "text platform records",
    "mailstore": "text platform records mime worker",
    "search": "text platform records",
    "archive": "text platform records mime worker search",
    "listing": "text platform records mailstore",
    "locations": "text platform records search archive",
    "library": "text platform records",
    "model": "text platform records mime worker mailstore search archive listing locations library",
    "cli": "text platform records mime search archive listing locations library model",
    "screens": "text platform records mime archive listing locations library model",
    "app": "platform records model screens",
}
# The same between sub-folders. What lies in a folder itself is "."; a file there that is no part of it stands for
# itself, such as the model's composition above everything.
SUBFOLDERS = {
    "text": {"charsets": "", ".": "charsets", "dates": ". charsets"},
    "records": {"timestamps": "", "texts": "timestamps", ".": "timestamps texts", "archived": ". timestamps texts",
                "json": ". archived timestamps", "archive_files": ". archived json texts",
                "stores": ". archived json timestamps", "logs": ". stores timestamps"},
    "archive": {".": "", "destination": ".", "run": ". destination", "removal": ". destination",
                "opening": ". destination", "attachments": ". opening", "checks": ". destination attachments", "bodies": ".",
                "export": ". destination opening"},
    "platform": {"paths": "", "platform": "", "system_menus": "", "home_places": "paths", "files": "paths platform",
                 "processes": "paths platform files", "threads": "files",
                 "linux": "paths platform system_menus home_places files processes",
                 "macos": "paths platform system_menus home_places files processes", ".": "paths platform files"},
    "mime": {".": "", "body": "."},
    "mailstore": {".": "", "folders": ".", "sqlite": ".", "index": ". folders sqlite", "accounts": ". folders sqlite index",
                  "scan": ". folders sqlite index"},
    "listing": {"account_titles": "", "trash_or_junk": "", "message_statistics": "account_titles trash_or_junk",
                "message_set": "message_statistics", "proof": "message_set",
                ".": "account_titles message_statistics message_set proof",
                "deletion": ". account_titles trash_or_junk message_statistics proof"},
    "locations": {"places": "", ".": "places", "loading": ". places"},
    "library": {"accounts": "", "threads": "", ".": "accounts threads", "overview": ". accounts"},
    "model": {"tasks": "", ".": "tasks", "mail": ". tasks", "archiving": ". tasks mail", "library": ". tasks mail",
              "components": ". tasks mail archiving library",
              "corvane_view_model": ". tasks mail archiving library components"},
    "cli": {"console": "", "usage": "", "unreadable_archives": "", "session": "unreadable_archives",
            "exit_status": "session", "command_set": "session",
            "mails": "session console", "named_entries": "session mails", "known_accounts": "session",
            "library_options": "session known_accounts unreadable_archives", "proving": "console session",
            "overview_loading": "session proving", "away_days": "console session",
            "commands": "console session exit_status command_set mails named_entries known_accounts library_options "
                        "proving overview_loading unreadable_archives away_days",
            "command_line": "console usage session exit_status command_set commands",
            ".": "session command_line"},
    "screens": {"controls": "", "texts": "", "desktop": "", "lists": "texts",
                "overview": "",
                "archive": "controls texts desktop lists overview", "mails": "controls texts desktop lists",
                "home": "controls texts desktop lists overview archive",
                 "archived": "controls texts desktop lists", "space": "controls texts desktop lists overview archive",
                 "library": "controls texts desktop lists",
                 "places": "controls texts desktop lists archive", "settings": "controls texts desktop lists archive",
                 "shell": "controls texts desktop lists overview archive mails home archived library space places "
                          "settings"},
}
QT_ALLOWED = {"thumbnail", "model", "cli", "screens", "app"}
INCLUDE = re.compile(r'^\s*#include\s+([<"])([^>"]+)[>"]', re.MULTILINE)
LIBRARY = re.compile(r"corvane_library\(\s*NAME\s+(\w+)(.*?)\)", re.DOTALL)


def allowed(table):
    return {name: set(below.split()) for name, below in table.items()}


def order_faults(title, table):
    before = set()
    for name, below in table.items():
        yield from (f"{title}: {name} uses {other}, which stands behind it" for other in sorted(below - before))
        before.add(name)


def part_of(parts, table):
    """The entry of the table that a path inside of a folder belongs to."""
    first = parts[0] if len(parts) > 1 else pathlib.PurePath(parts[0]).stem
    return first if first in table else "."


class Tree:
    def __init__(self):
        self.files = sorted(path for path in ROOT.rglob("*") if path.suffix in {".h", ".cpp", ".mm"})
        self.includes = {str(path.relative_to(ROOT)): INCLUDE.findall(path.read_text(encoding="utf-8"))
                         for path in self.files}
        self.reached = {}

    def ours(self, file):
        return [target for kind, target in self.includes.get(file, []) if kind == '"']

    def folders_behind(self, header):
        """Each folder whose headers this one brings along, with the header that includes it."""
        if header not in self.reached:
            found = self.reached[header] = {}
            for target in self.ours(header):
                found.setdefault(target.split("/")[0], header)
                for folder, by in self.folders_behind(target).items():
                    found.setdefault(folder, by)
        return self.reached[header]


def include_faults(tree, file, arrows, inner, seen):
    parts = pathlib.PurePath(file).parts
    folder = parts[0]
    for kind, target in tree.includes[file]:
        first, *rest = target.split("/")
        if target.startswith(".."):
            yield f"{file}: climbs out of its folder: {target}"
        elif kind == "<" and re.match(r"Q[A-Z]", target) and folder not in QT_ALLOWED:
            yield f"{file}: Qt below the model: {target}"
        elif kind == "<" and first == "tbb" and parts[-1] != "parallel.h":
            yield f"{file}: oneTBB without platform/threads/parallel.h: {target}"
        elif kind == '"' and first == folder and folder in inner:
            table = inner[folder]
            own, other = part_of(parts[1:], table), part_of(rest, table)
            if own != other and other not in table[own]:
                yield f"{file}: against the arrows inside of {folder}/: {target}"
        elif kind == '"' and first in arrows and first != folder:
            if first not in arrows[folder]:
                yield f"{file}: against the arrows: {target}"
            for hidden, by in tree.folders_behind(target).items():
                if hidden in arrows and hidden not in seen[folder]:
                    yield f"{file}: {target} brings {hidden}/ along, by {by}, which links it privately"


def links():
    """By folder: what its target links publicly, and what privately, of ours."""
    found = {}
    for path in sorted(ROOT.glob("*/CMakeLists.txt")):
        for name, arguments in LIBRARY.findall(path.read_text(encoding="utf-8")):
            words = {"LINKS": set(), "PRIVATE_LINKS": set()}
            current = None
            for word in arguments.split():
                if word.isupper() and "_" not in word or word in words:
                    current = words.get(word)
                elif current is not None and word.startswith("corvane_"):
                    current.add(word.removeprefix("corvane_"))
            found[name] = (words["LINKS"], words["PRIVATE_LINKS"])
    return found


def visible(linked):
    """What the headers of may be included by a folder's files: its links, and what these link publicly."""
    def public(name):
        below = linked.get(name, (set(), set()))[0]
        return below.union(*(public(other) for other in below)) if below else set()
    return {name: {name} | direct | private | set().union(*(public(other) for other in direct | private))
            for name, (direct, private) in linked.items()}


def link_faults(linked, arrows):
    for name, (public, private) in linked.items():
        difference = (public | private) ^ arrows[name]
        difference -= {"library"} if "library" not in linked else set()
        if difference:
            yield f"src/{name}/CMakeLists.txt: links and tools/check_arrows.py differ in {', '.join(sorted(difference))}"


def main():
    tree = Tree()
    if not tree.files:
        print("no sources found", file=sys.stderr)
        return 1
    arrows, linked = allowed(ARROWS), links()
    inner = {folder: allowed(table) for folder, table in SUBFOLDERS.items()}
    seen = visible(linked)
    faults = list(order_faults("src", arrows))
    for folder, table in inner.items():
        faults += order_faults(f"src/{folder}", table)
    faults += link_faults(linked, arrows)
    for file in tree.includes:
        faults += include_faults(tree, file, arrows, inner, seen)
    print("\n".join(faults), end="\n" if faults else "", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
