#!/usr/bin/env python3
"""Packs pictures of one icon into an .icns file, the form in which a Mac's bundle carries its icon. The pictures are
PNG files SIZE.png of 16 to 1024 pixels, drawn from desktop/corvane.svg.
  make_icns.py FOLDER ICNS"""

import pathlib
import struct
import sys

# Type and pixels: plain sizes, then those for displays of double density.
ENTRIES = [("icp4", 16), ("icp5", 32), ("ic07", 128), ("ic08", 256), ("ic09", 512), ("ic11", 32), ("ic12", 64),
           ("ic13", 256), ("ic14", 512), ("ic10", 1024)]


def entry(kind, content):
    return kind.encode() + struct.pack(">I", 8 + len(content)) + content


def main():
    folder, target = map(pathlib.Path, sys.argv[1:])
    content = b"".join(entry(kind, (folder / f"{size}.png").read_bytes()) for kind, size in ENTRIES)
    target.write_bytes(entry("icns", content))


if __name__ == "__main__":
    main()
