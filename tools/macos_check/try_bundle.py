#!/usr/bin/env python3
"""Shows that tools/complete_bundle.py completes a bundle, over one that is made of small programs and libraries of
macOS, by the tools of LLVM. Part of scripts/check-macos.
  try_bundle.py"""

import os
import pathlib
import plistlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TOOLS = {"OTOOL": "llvm-otool-19", "INSTALL_NAME_TOOL": "llvm-install-name-tool-19"}


def make(path, system, install_name=None, libraries=()):
    path.parent.mkdir(parents=True, exist_ok=True)
    kind = ["-dynamiclib", f"-Wl,-install_name,{install_name}"] if install_name else []
    source = "" if install_name else "int main(void) { return 0; }"
    subprocess.run(["clang-19", "-Wno-unused-command-line-argument", "-target", f"arm64-apple-macos{system}", "-nostdlib", "-fuse-ld=lld", "-x", "c", "-",
                    "-x", "none", *map(str, libraries), "-Wl,-w", "-Wl,-undefined,dynamic_lookup", "-Wl,-headerpad,0x400",
                    "-Wl,-rpath,/opt/llvm/lib", *kind, "-o", str(path)], input=source, text=True, check=True)
    return path


def loaded(binary):
    lines = subprocess.run(["llvm-otool-19", "-L", str(binary)], check=True, capture_output=True, text=True).stdout
    return {line.split(" (")[0].strip() for line in lines.splitlines()[1:]}


def complete(app, prefix):
    return subprocess.run([sys.executable, ROOT / "tools/complete_bundle.py", app], capture_output=True, text=True,
                          env={**os.environ, **TOOLS, "LIBRARY_PREFIXES": str(prefix)})


def main():
    with tempfile.TemporaryDirectory() as folder:
        # A library that leads to its data beside itself, as ICU's do, and stands alone in the bundle.
        prefix, app = pathlib.Path(folder) / "brew", pathlib.Path(folder) / "Corvane.app"
        data = make(prefix / "opt/icu/lib/libdata.1.dylib", 15, "@loader_path/libdata.1.dylib")
        main_library = make(app / "Contents/Frameworks/libuc.1.dylib", 14,
                            "@executable_path/../Frameworks/libuc.1.dylib", [data])
        far = make(prefix / "lib/libfar.2.dylib", 14, str(prefix / "lib/libfar.2.dylib"))
        program = make(app / "Contents/MacOS/Corvane", 14, None, [main_library, far])
        (app / "Contents/Info.plist").write_bytes(plistlib.dumps({"LSMinimumSystemVersion": "14.0"}))

        ended = complete(app, prefix)
        frameworks = "@executable_path/../Frameworks/"
        assert ended.returncode == 0, ended.stderr
        assert loaded(program) == {frameworks + "libuc.1.dylib", frameworks + "libfar.2.dylib"}, loaded(program)
        assert (app / "Contents/Frameworks/libdata.1.dylib").exists()
        assert "/opt/llvm" not in subprocess.run(["llvm-otool-19", "-l", str(program)], capture_output=True,
                                                 text=True).stdout
        assert plistlib.loads((app / "Contents/Info.plist").read_bytes())["LSMinimumSystemVersion"] == "15.0"

        make(app / "Contents/PlugIns/libplugin.dylib", 14, "libplugin.dylib",
             [make(pathlib.Path(folder) / "gone.dylib", 14, "/nowhere/libgone.dylib")])
        ended = complete(app, prefix)
        assert ended.returncode != 0 and "/nowhere/libgone.dylib" in ended.stderr, ended.stderr


if __name__ == "__main__":
    main()
