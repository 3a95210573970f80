#!/usr/bin/env python3
"""Completes an application bundle for macOS after macdeployqt: libraries that its programs need and that still lie
outside of it are copied into it, and what leads out of it is made to lead there. (macdeployqt leaves out what a library
looks for beside itself, such as ICU's data.) Then the bundle says which system it needs: the newest that any of its
parts was built for. Fails, with the names, when something stays outside. What it changes has to be signed anew.
  complete_bundle.py APP     OTOOL and INSTALL_NAME_TOOL may name other tools of that kind"""

import os
import pathlib
import plistlib
import re
import shutil
import subprocess
import sys

OTOOL = os.environ.get("OTOOL", "otool")
INSTALL_NAME_TOOL = os.environ.get("INSTALL_NAME_TOOL", "install_name_tool")
# Thin and fat, as they lie in a file.
MAGICS = (b"\xcf\xfa\xed\xfe", b"\xca\xfe\xba\xbe")
SYSTEM = ("/usr/lib/", "/System/")
FRAMEWORKS = "@executable_path/../Frameworks/"


def is_binary(path):
    if path.is_symlink() or not path.is_file():
        return False
    with open(path, "rb") as file:
        return file.read(4) in MAGICS


def field(commands, command, name):
    """The values of a field of all load commands of one kind, in what "otool -l" prints."""
    blocks = re.split(r"^Load command \d+$", commands, flags=re.MULTILINE)
    kind = re.compile(rf"^\s*cmd {command}$", re.MULTILINE)
    value = re.compile(rf"^\s*{name} (.+?)(?: \(offset \d+\))?$", re.MULTILINE)
    return [value.search(block).group(1) for block in blocks if kind.search(block)]


class Bundle:
    def __init__(self, app):
        self.contents = pathlib.Path(app).resolve() / "Contents"
        self.programs = self.contents / "MacOS"
        self.frameworks = self.contents / "Frameworks"
        self.systems = []
        self.outside = []

    def binaries(self):
        # A Python comes with its own libraries, which it finds by itself.
        python = self.contents / "Resources/PythonRuntime"
        return sorted(path for path in self.contents.rglob("*") if python not in path.parents and is_binary(path))

    def at(self, text, binary):
        """A path in which the linker's words stand for folders."""
        for word, folder in (("@executable_path", self.programs), ("@loader_path", binary.parent)):
            if text.startswith(word):
                return pathlib.Path(os.path.normpath(f"{folder}{text[len(word):]}"))
        return pathlib.Path(text)

    def named(self, name, binary, rpaths):
        """Where the linker finds a library by the words of the binary alone."""
        if not name.startswith("@rpath/"):
            return [self.at(name, binary)]
        rest = name.removeprefix("@rpath/")
        return [self.at(rpath, binary) / rest for rpath in rpaths] + [self.frameworks / rest]

    def found(self, name, binary, rpaths):
        """None where it lies nowhere. What is in the bundle comes first, whatever the binary says."""
        base = pathlib.Path(name).name
        places = [*self.named(name, binary, rpaths), self.frameworks / base, *elsewhere(base)]
        there = [place for place in places if place.exists()]
        return next((place for place in there if self.holds(place)), there[0] if there else None)

    def holds(self, path):
        return self.contents in path.parents

    def complete(self, binary):
        """Leads all of a binary into the bundle. The libraries that came into it by that."""
        commands = subprocess.run([OTOOL, "-l", binary], check=True, capture_output=True, text=True).stdout
        rpaths = field(commands, "LC_RPATH", "path")
        self.systems += field(commands, "LC_BUILD_VERSION", "minos")
        changes, came = [], []
        for kind in ("LC_LOAD_DYLIB", "LC_LOAD_WEAK_DYLIB", "LC_REEXPORT_DYLIB"):
            for name in field(commands, kind, "name"):
                if name.startswith(SYSTEM):
                    continue
                place = self.found(name, binary, rpaths)
                if place is None or (".framework/" in name and not self.holds(place)):
                    self.outside.append(f"{binary.relative_to(self.contents)}: {name}")
                    continue
                if not self.holds(place):
                    place = self.take(place)
                    came.append(place)
                # Rather than by a list of folders, in which another one may come first on another Mac.
                if name.startswith(("/", "@rpath/")) or self.at(name, binary) != place:
                    changes += ["-change", name, f"@executable_path/../{place.relative_to(self.contents)}"]
        for rpath in dict.fromkeys(rpaths):
            if rpath.startswith("/"):
                changes += ["-delete_rpath", rpath]
        if changes:
            subprocess.run([INSTALL_NAME_TOOL, *changes, binary], check=True)
        return came

    def take(self, library):
        copy = self.frameworks / library.name
        if not copy.exists():
            self.frameworks.mkdir(exist_ok=True)
            shutil.copyfile(library, copy)
            copy.chmod(0o755)
            subprocess.run([INSTALL_NAME_TOOL, "-id", FRAMEWORKS + library.name, copy], check=True)
        return copy

    def say_system(self):
        newest = max(self.systems, key=lambda version: [int(part) for part in version.split(".")])
        path = self.contents / "Info.plist"
        information = plistlib.loads(path.read_bytes())
        information["LSMinimumSystemVersion"] = newest
        path.write_bytes(plistlib.dumps(information))
        return newest


def elsewhere(name):
    """Places of Homebrew's libraries, also of those that it links nowhere."""
    for prefix in map(pathlib.Path, os.environ.get("LIBRARY_PREFIXES", "/opt/homebrew:/usr/local").split(":")):
        yield prefix / "lib" / name
        yield from sorted(prefix.glob(f"opt/*/lib/{name}"))
        yield from sorted(prefix.glob(f"opt/*/lib/*/{name}"))


def main():
    bundle = Bundle(sys.argv[1])
    waiting = bundle.binaries()
    seen = set()
    while waiting:
        binary = waiting.pop()
        if binary not in seen:
            seen.add(binary)
            waiting += bundle.complete(binary)
    if bundle.outside:
        sys.exit("应用程序包之外还有它需要的库：\n" + "\n".join(f"  {line}" for line in sorted(bundle.outside)))
    print(f"{bundle.contents.parent.name}：{len(seen)} 个程序和库，需要 macOS {bundle.say_system()} 或更高版本")


if __name__ == "__main__":
    main()
