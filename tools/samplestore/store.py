"""Makes the whole home directory: mixes everyday and odd mail and sends each copy to the index, to
its file and to the manifest."""

from __future__ import annotations

import os
import random
import sys
from collections.abc import Iterator
from dataclasses import asdict, dataclass
from itertools import chain

from . import emlx, mime
from .accounts import make_accounts, odd_mailboxes
from .accounts_db import write_accounts_db
from .envelope_index import EnvelopeIndex
from .folders import MailFolders
from .manifest import Manifest, Row, id_header_of
from .model import Copy, Mail, Person, UTF8
from .oddities import Oddities
from .scenes import Family, Scenes
from .wording import Wording

FEWEST_MESSAGES = 50
MOST_MESSAGES = 1_000_000
# A pass over the oddities for each so many messages; below 530 messages there is room for part of one.
MESSAGES_PER_ODD_PASS = 4000
LARGEST_ODD_SHARE = 0.25
# Both sides of each place where the path of a file changes its shape.
BORDER_ROWIDS = [7, 999, 1000, 1001, 7000, 9999, 10_000, 99_999, 100_000, 123_456]
SMALL_STORE_SPREAD = 140_000
FIRST_ORPHAN_ROWID = 9_000_001
APPLE_DOUBLE = (b"\x00\x05\x16\x07\x00\x02\x00\x00Mac OS X        \x00\x02\x00\x00\x00\x09"
                b"\x00\x00\x00\x32\x00\x00\x0e\xb0\x00\x00\x00\x02").ljust(4096, b"\0")
PROGRESS_STEP = 20_000


@dataclass(slots=True)
class Settings:
    messages: int = 600
    seed: int = 1
    files: bool = True
    odd: bool = True
    manifest: bool = True
    wal: bool = False
    message_id_header: bool = True
    accounts_db: bool = True
    server_only_percent: float = 12.0
    inferred_accounts: bool = False


def row_numbers(count: int, rng: random.Random) -> Iterator[int]:
    """Rising numbers with gaps; a small store is spread so that its buckets are as deep as a large
    one's."""
    yield from BORDER_ROWIDS
    taken, number = set(BORDER_ROWIDS), 1
    step = max(1, SMALL_STORE_SPREAD // count)
    while True:
        number += rng.randint(1, 2 * step - 1)
        if number not in taken:
            yield number


class SampleStore:
    def __init__(self, home: str, settings: Settings, quiet: bool = True) -> None:
        self._home = home
        self._settings = settings
        self._quiet = quiet
        self._folders = MailFolders(home)
        self._accounts = make_accounts(settings.seed, settings.inferred_accounts)
        self._places = odd_mailboxes(self._accounts) if settings.odd else {}
        wording = Wording(self._rng("wording"), min(4000, 120 + settings.messages // 50))
        self._scenes = Scenes(self._rng("scenes"), wording, self._accounts,
                              settings.server_only_percent / 100)
        self._numbers = row_numbers(settings.messages, self._rng("rows"))

    def _rng(self, use: str) -> random.Random:
        return random.Random(f"{self._settings.seed}/{use}")

    def make(self) -> dict[str, int]:
        """Writes everything, and gives the counts of the manifest."""
        settings = self._settings
        os.makedirs(self._home, exist_ok=True)
        self._make_folders()
        index_path = os.path.join(self._home, "Library/Mail/V10/MailData/Envelope Index")
        self._index = EnvelopeIndex(index_path, settings.message_id_header, settings.wal)
        self._index.add_mailboxes(self._all_mailboxes())
        path = os.path.join(self._home, "sample-store.json") if settings.manifest else None
        self._manifest = Manifest(path, asdict(settings))
        self._write_messages()
        self._index.finish()
        if settings.odd:
            self._write_strays()
        self._write_older_store()
        if settings.accounts_db:
            self._write_accounts()
        self._manifest.close(self._accounts)
        return dict(self._manifest.counts)

    def _all_mailboxes(self) -> list:
        boxes = [mailbox for account in self._accounts.values() for mailbox in account.mailboxes]
        return boxes + [mailbox for mailbox in self._places.values() if mailbox.url]

    def _make_folders(self) -> None:
        self._folders.make("Library/Mail/V10/MailData")
        for mailbox in self._all_mailboxes():
            if mailbox.folder:
                self._folders.make_mailbox(mailbox)

    # Messages

    def _write_messages(self) -> None:
        written = 0
        for family in self._families():
            family = family[:self._settings.messages - written]
            self._write_family(family)
            before, written = written, written + len(family)
            if not self._quiet and before // PROGRESS_STEP < written // PROGRESS_STEP:
                print(f"{written} messages", file=sys.stderr)
            if written >= self._settings.messages:
                return

    def _families(self) -> Iterator[Family]:
        """Everyday mail, with odd families strewn in evenly."""
        odd, quota = self._odd_families()
        odd_rows = rows = 0
        for family in self._scenes.families():
            rows += len(family)
            yield family
            # A little ahead of the even pace, so that the last one is in before the store is full.
            while odd_rows < quota and odd_rows * self._settings.messages <= quota * (rows + 20):
                family = next(odd)
                odd_rows += len(family)
                rows += len(family)
                yield family

    def _odd_families(self) -> tuple[Iterator[Family], int]:
        """The odd families, and how many rows of them there shall be."""
        if not self._settings.odd:
            return iter(()), 0
        messages = self._settings.messages
        oddities = Oddities(self._scenes, self._places)
        first = list(oddities.families())
        passes = max(1, messages // MESSAGES_PER_ODD_PASS)
        later = (family for _ in range(passes - 1) for family in oddities.families())
        rows = passes * sum(map(len, first))
        return chain(first, later), min(rows, int(messages * LARGEST_ODD_SHARE))

    def _write_family(self, family: Family) -> None:
        parts: dict[Mail, mime.Part] = {}
        global_rows: dict[int, int] = {}
        rows = []
        for copy in family:
            if copy.mail not in parts:
                parts[copy.mail] = mime.content(copy.mail)
            rows.append(self._write_copy(copy, parts[copy.mail], global_rows))
        self._manifest.add_family(rows)

    def _write_copy(self, copy: Copy, part: mime.Part, global_rows: dict[int, int]) -> Row:
        rowid = next(self._numbers)
        message = mime.message(copy.mail, copy.headers, part)
        subject = copy.columns.get("subject", copy.mail.subject)
        row = Row(rowid, copy, subject, copy.columns.get("size", len(message)), None)
        if row.number:
            header = id_header_of(copy, row.number)
            if row.number not in global_rows:
                global_rows[row.number] = self._index.add_global_data(row.number, header)
            row.id_header = header if self._settings.message_id_header else None
        self._index.add_message(rowid, copy, subject, row.size, global_rows.get(row.number))
        if self._settings.files and copy.file != "none":
            self._write_files(row, message)
        return row

    def _write_files(self, row: Row, message: bytes) -> None:
        copy, write = row.copy, self._folders.write
        folder = self._folders.message_folder(copy.mailbox, row.rowid)
        plist = emlx.PLIST.format(conversation=copy.mail.conversation, remote=row.rowid * 3 + 1,
                                  received=copy.mail.date_received or 0).encode()
        if copy.file == "partial":
            stub = mime.message(copy.mail, copy.headers, mime.content(copy.mail, stub=True))
            data = emlx.FORMS["whole"](stub, plist).data
            row.partial_file = write(folder, f"{row.rowid}.partial.emlx", data)
        else:
            row.stored = emlx.FORMS[copy.file](message, plist)
            row.file = write(folder, f"{row.rowid}.emlx", row.stored.data)
        if copy.apple_double:
            write(folder, f"._{row.rowid}.emlx", APPLE_DOUBLE)
        base = self._folders.message_folder(copy.mailbox, row.rowid, "Attachments")
        row.files_beside = [(write(f"{base}/{row.rowid}/{part}", name, data), len(data))
                            for part, name, data in copy.stored]

    # What lies around

    def _write_strays(self) -> None:
        """Files and folders that belong to no row and must not be taken for mail or for a store."""
        write = self._folders.write
        write("Library/Mail", "V11", b"not a folder\n")
        write("Library/Mail/Vault", "note.txt", b"not a store\n")
        write("Library/Mail/V10/MailData", ".DS_Store", b"\0\0\0\1Bud1\0")
        if not self._settings.files:
            return
        inbox = self._accounts["work"].with_role("inbox")[0]
        names = ("{}.emlx", "{}.partial.emlx", "copy of {}.emlx", "{}.emlx.tmp")
        for rowid, name in enumerate(names, FIRST_ORPHAN_ROWID):
            message = mime.message(self._stray_mail(f"无人认领的文件 {rowid}"))
            folder = self._folders.message_folder(inbox, rowid)
            path = write(folder, name.format(rowid), emlx.FORMS["whole"](message, b"").data)
            self._manifest.orphans.append(path)

    def _stray_mail(self, subject: str) -> Mail:
        me = self._accounts["work"].owner
        return Mail(f"{subject.rpartition(' ')[2]}.stray@huaxin.example",
                    Person("王伟", "wang.wei@huaxin.example"), [me], subject, 1_400_000_000, "zh",
                    UTF8, "这封邮件不在索引里。\n", "STRAY")

    def _write_older_store(self) -> None:
        """The store of an earlier system, which stays beside the newer one and doesn't count."""
        account = self._accounts["work"]
        inbox = account.with_role("inbox")[0]
        mail = self._stray_mail("旧版本库的邮件 9")
        base = "Library/Mail/V9"
        self._folders.make(f"{base}/MailData")
        index = EnvelopeIndex(os.path.join(self._home, base, "MailData/Envelope Index"))
        index.add_mailboxes([inbox])
        message = mime.message(mail)
        row = index.add_global_data(mail.number, f"<{mail.message_id}>")
        index.add_message(7, Copy(mail, inbox), mail.subject, len(message), row)
        index.finish()
        if self._settings.files:
            self._folders.write(f"{base}/{account.uuid}/INBOX.mbox/Data/Messages", "7.emlx",
                                emlx.FORMS["whole"](message, b"").data)

    def _write_accounts(self) -> None:
        self._folders.make("Library/Accounts")
        path = os.path.join(self._home, "Library/Accounts/Accounts4.sqlite")
        write_accounts_db(path, self._accounts, self._settings.inferred_accounts)
