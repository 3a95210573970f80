"""Writes the folders and files of the store."""

from __future__ import annotations

import os
import plistlib

from .accounts import STORE_VERSION
from .model import Mailbox


def bucket_path(rowid: int) -> str:
    """The one-digit folders of a message: the thousands of its number, last digit first."""
    return "" if rowid < 1000 else "/".join(reversed(str(rowid // 1000))) + "/"


class MailFolders:
    def __init__(self, home: str) -> None:
        self._home = home
        self._made: set[str] = set()

    def make(self, relative: str) -> None:
        if relative not in self._made:
            os.makedirs(os.path.join(self._home, relative), exist_ok=True)
            self._made.add(relative)

    def write(self, folder: str, name: str, data: bytes) -> str:
        """Writes a new file and returns its path below the home directory."""
        self.make(folder)
        path = f"{folder}/{name}"
        with open(f"{self._home}/{path}", "xb", buffering=0) as file:
            while data:
                data = data[file.write(data):]
        return path

    def message_folder(self, mailbox: Mailbox, rowid: int, kind: str = "Messages") -> str:
        bucket = bucket_path(rowid)
        return f"Library/Mail/{STORE_VERSION}/{mailbox.data_root}/{bucket}{kind}"

    def make_mailbox(self, mailbox: Mailbox) -> None:
        """Every `.mbox` level has an Info.plist, also one that is only there for its children."""
        base = f"Library/Mail/{STORE_VERSION}"
        levels = mailbox.folder.split("/")
        for depth in range(2, len(levels) + 1):
            folder = "/".join([base, *levels[:depth]])
            if folder not in self._made:
                flag = mailbox.imported if depth == len(levels) else None
                self.write(folder, "Info.plist", info_plist(flag))
        if mailbox.data_root:
            self.make(f"{base}/{mailbox.data_root}")


def info_plist(imported: object) -> bytes:
    values: dict[str, object] = {"MailboxFormat": 4}
    if imported is not None:
        values["MailboxHasBeenImported"] = imported
    return plistlib.dumps(values)
