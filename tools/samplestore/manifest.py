"""Tells, beside the store, what a right reader must find in it. Everything stands here as the maker
meant it; nothing is read back from the store."""

from __future__ import annotations

import hashlib
import json
import time
from collections import Counter, defaultdict
from dataclasses import dataclass, field

from .emlx import Stored
from .model import AS_IN_MAIL, Account, Copy


@dataclass(slots=True, eq=False)
class Row:
    """What was written for one row of the index."""

    rowid: int
    copy: Copy
    subject: str | None
    size: int
    id_header: str | None
    file: str | None = None
    partial_file: str | None = None
    stored: Stored | None = None
    files_beside: list[tuple[str, int]] = field(default_factory=list)

    @property
    def date(self) -> int:
        mail, columns = self.copy.mail, self.copy.columns
        dates = (columns.get(name, getattr(mail, name))
                 for name in ("display_date", "date_received", "date_sent"))
        return next((date for date in dates if date), 0)

    @property
    def number(self) -> int | None:
        return self.copy.columns.get("message_id", self.copy.mail.number)

    @property
    def listed(self) -> bool:
        return self.date > 0 and self.copy.mailbox.url is not None

    @property
    def local(self) -> bool:
        return self.listed and self.file is not None

    @property
    def message_id(self) -> str | None:
        return (self.id_header or "").strip(" \t<>").lower() or None

    @property
    def full_subject(self) -> str:
        prefix = self.copy.columns.get("subject_prefix", self.copy.mail.prefix)
        return (prefix or "") + (self.subject or "")

    @property
    def sender(self) -> tuple[str, str]:
        person = None if "sender" in self.copy.columns else self.copy.mail.sender
        return (person.name, person.address) if person else ("", "")

    def identity(self) -> tuple:
        if self.message_id:
            return (self.message_id,)
        recipients = ", ".join(person.shown() for _, person in self.copy.mail.recipients)
        return (self.full_subject.strip().lower(), self.sender, recipients.lower(), self.date)

    def as_json(self) -> dict[str, object]:
        mail, mailbox = self.copy.mail, self.copy.mailbox
        name, address = self.sender
        return {
            "rowid": self.rowid, "url": mailbox.url,
            "account": mailbox.account.uuid if mailbox.account else None,
            "tag": self.copy.tag or None, "listed": self.listed, "local": self.local,
            "trashOrJunk": mailbox.is_trash, "file": self.file, "partialFile": self.partial_file,
            "fileBytes": len(self.stored.data) if self.stored else None,
            **self._message_json(),
            "subject": self.full_subject, "senderName": name, "senderAddress": address,
            "recipients": [{"type": kind, "name": person.name, "address": person.address}
                           for kind, person in mail.recipients],
            "date": self.date, "size": self.size, "messageNumber": self.number,
            "messageIdHeader": self.id_header or "", "messageId": self.message_id,
            "indexAttachments": [item for item in self.copy.names_in_index() if item],
            "attachmentNames": self.copy.attachment_names() if self.copy.plain_names else None,
            "storedFiles": [{"path": path, "bytes": size} for path, size in self.files_beside],
        }

    def _message_json(self) -> dict[str, object]:
        message = self.stored.message if self.stored else None
        if message is None:
            return {"messageBytes": None, "messageSha256": None}
        return {"messageBytes": len(message), "messageSha256": hashlib.sha256(message).hexdigest()}


class Manifest:
    """Messages go to the file as they come; only groups and counts are held."""

    def __init__(self, path: str | None, settings: dict[str, object]) -> None:
        self._file = open(path, "w", encoding="utf-8") if path else None
        self._settings = settings
        self._separator = '{"messages": [\n'
        self._duplicates: list[list[int]] = []
        self._variants: list[list[list[int]]] = []
        self.counts: Counter[str] = Counter()
        self._by_account: dict[str, Counter[str]] = defaultdict(Counter)
        self._years: Counter[int] = Counter()
        self._undownloaded: Counter[int] = Counter()
        self.orphans: list[str] = []

    def add_family(self, rows: list[Row]) -> None:
        """Rows of one message, or of messages that belong together; no other family shares a
        Message-ID with them."""
        for row in rows:
            self._write(row)
            self._count(row)
        self._group(rows)
        self._count_years([row for row in rows if row.listed and row.number
                           and not row.copy.mailbox.is_trash])

    def _write(self, row: Row) -> None:
        if self._file:
            self._file.write(self._separator + json.dumps(row.as_json(), ensure_ascii=False))
            self._separator = ",\n"

    def _count(self, row: Row) -> None:
        kind = "local" if row.local else "serverOnly" if row.listed else "unlisted"
        account = row.copy.mailbox.account
        counters = [self.counts] + ([self._by_account[account.uuid]] if account else [])
        for counter in counters:
            counter.update(("rows", kind))

    def _group(self, rows: list[Row]) -> None:
        groups: dict[tuple, list[Row]] = defaultdict(list)
        for row in rows:
            if row.listed:
                groups[row.identity()].append(row)
        for group in groups.values():
            local = [row for row in group if row.local]
            self.counts["distinctListed"] += 1
            self.counts["distinctLocal"] += bool(local)
            if len(group) > 1 and group[0].copy.mail.message_id:
                self._duplicates.append([row.rowid for row in group])
            self._note_variants(local)

    def _note_variants(self, local: list[Row]) -> None:
        bodies: dict[bytes, list[int]] = defaultdict(list)
        for row in local if len(local) > 1 else ():
            if row.stored.message is not None:
                bodies[body_of(row.stored.message)].append(row.rowid)
        if len(bodies) > 1:
            self._variants.append(list(bodies.values()))

    def _count_years(self, rows: list[Row]) -> None:
        seen = {(time.gmtime(row.date).tm_year, row.number) for row in rows}
        here = {(time.gmtime(row.date).tm_year, row.number) for row in rows if row.file}
        self._years.update(year for year, _ in seen)
        self._undownloaded.update(year for year, _ in seen - here)

    def close(self, accounts: dict[str, Account]) -> None:
        if not self._file:
            return
        rest = {
            "settings": self._settings,
            "accounts": [self._account_json(account) for account in accounts.values()],
            "counts": dict(sorted(self.counts.items())),
            "yearsUtc": {str(year): self._years[year] for year in sorted(self._years)},
            "undownloadedYearsUtc": {str(year): self._undownloaded[year]
                                     for year in sorted(self._undownloaded)},
            "duplicates": self._duplicates, "variants": self._variants, "orphanFiles": self.orphans,
        }
        self._file.write("\n],\n" + json.dumps(rest, ensure_ascii=False)[1:] + "\n")
        self._file.close()

    def _account_json(self, account: Account) -> dict[str, object]:
        counter = self._by_account[account.uuid]
        return {
            "key": account.key, "uuid": account.uuid, "scheme": account.scheme,
            "label": account.label, "address": account.address,
            "linkedAddress": account.linked_address, "redundant": account.key == "copy",
            "messages": counter["rows"], "local": counter["local"],
            "serverOnly": counter["serverOnly"], "unlisted": counter["unlisted"],
        }


def body_of(message: bytes) -> bytes:
    """The message without its header block; the headers are the maker's own, so the first empty
    line ends them."""
    line_end = b"\r\n" if b"\r\n" in message[:message.find(b"\n") + 1] else b"\n"
    return message.partition(line_end * 2)[2]


def id_header_of(copy: Copy, style: int) -> str | None:
    """The Message-ID as the index holds it: mostly in angle brackets, sometimes bare."""
    if copy.id_header is not AS_IN_MAIL:
        return copy.id_header
    if copy.mail.message_id is None:
        return None
    return copy.mail.message_id if style % 10 == 0 else f"<{copy.mail.message_id}>"
