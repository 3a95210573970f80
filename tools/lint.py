#!/usr/bin/env python3
"""Runs clang-tidy over those sources that have changed, in themselves or in a header they read, since their last
run without a finding. What was clean is remembered in build/dev/lint-clean, by a hash of all that a run reads; the
headers of a source are those that the compiler told ninja."""
import argparse
import concurrent.futures
import functools
import hashlib
import json
import subprocess
import sys
from pathlib import Path

BUILD = Path("build/dev")
CLEAN = BUILD / "lint-clean"
TIDY = ["clang-tidy-19", "-p", str(BUILD), "--quiet", "--warnings-as-errors=*",
        "--extra-arg=-Wno-unknown-warning-option", "--extra-arg=-Wno-ignored-gch"]


def output_of(command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def compile_commands():
    return {entry["file"]: entry["command"] for entry in json.loads((BUILD / "compile_commands.json").read_text())}


def headers_by_object():
    """The inputs of each object, from blocks of "OBJECT: #deps ..." and indented lines."""
    headers, current = {}, []
    for line in output_of(["ninja", "-C", str(BUILD), "-t", "deps"]).splitlines():
        if line.startswith("    "):
            current.append(line.strip())
        elif ": #deps" in line:
            current = headers.setdefault(line.split(": #deps")[0], [])
    return headers


@functools.lru_cache(maxsize=None)
def mark(path):
    """Ours by contents; those of the system change with their packages, which set a time."""
    file = BUILD / path
    if not file.exists():
        return "missing"
    if Path.cwd() in file.resolve().parents and file.suffix != ".gch":
        return hashlib.sha256(file.read_bytes()).hexdigest()
    return "" if file.suffix == ".gch" else str(file.stat().st_mtime_ns)


def keys(sources):
    common = output_of(["clang-tidy-19", "--version"]) + Path(".clang-tidy").read_text() + " ".join(TIDY)
    commands, headers = compile_commands(), headers_by_object()
    for source in sources:
        command = commands.get(str(Path(source).resolve()), "")
        object_file = command.partition(" -o ")[2].split(" ")[0]
        inputs = headers.get(object_file)
        if inputs is None:
            sys.exit(f"{source}: not part of the build")
        text = "\n".join([common, command, *(f"{name} {mark(name)}" for name in inputs)])
        yield source, hashlib.sha256(text.encode()).hexdigest()


def is_clean(source):
    run = subprocess.run([*TIDY, source], capture_output=True, text=True)
    if run.returncode != 0:
        print(run.stdout or run.stderr, end="", flush=True)
    return run.returncode == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("sources", nargs="*")
    options = parser.parse_args()
    built = {str(Path(file).resolve()) for file in compile_commands()}
    sources = options.sources or [source for source in output_of(["git", "ls-files", "src/*.cpp"]).split()
                                  if str(Path(source).resolve()) in built]  # without those of other systems

    known = set(CLEAN.read_text().split()) if CLEAN.exists() else set()
    changed = {source: key for source, key in keys(sources) if key not in known}
    failed = []
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool, CLEAN.open("a") as clean:
        for source, passed in zip(changed, pool.map(is_clean, changed)):
            if passed:
                print(changed[source], file=clean, flush=True)
            else:
                failed.append(source)
    print(f"clang-tidy: {len(sources)} sources, {len(changed)} looked at, {len(failed)} with findings",
          file=sys.stderr)
    sys.exit(bool(failed))


if __name__ == "__main__":
    main()
