"""The values that pass between the writers: people, mailboxes, mails and their stored copies."""

from __future__ import annotations

import hashlib
from dataclasses import dataclass, field
from typing import NamedTuple


class Person(NamedTuple):
    name: str
    address: str

    def shown(self) -> str:
        return f"{self.name} <{self.address}>" if self.name else self.address


class Charset(NamedTuple):
    label: str
    codec: str
    header_encoding: str
    transfer: str


UTF8 = Charset("utf-8", "utf-8", "B", "base64")


@dataclass(slots=True, eq=False)
class Account:
    key: str
    uuid: str
    scheme: str
    owner: Person
    label: str
    address: str | None
    linked_address: str | None = None
    inner_level: bool = True
    mailboxes: list[Mailbox] = field(default_factory=list)

    def with_role(self, *roles: str) -> list[Mailbox]:
        return [mailbox for mailbox in self.mailboxes if mailbox.role in roles]


@dataclass(slots=True, eq=False)
class Mailbox:
    """`folder` is the path below the version folder, None where the folder is gone."""

    rowid: int
    account: Account | None
    url: str | None
    role: str
    folder: str | None
    data_root: str | None
    imported: object = None

    @property
    def is_trash(self) -> bool:
        return self.role in ("trash", "junk")


@dataclass(slots=True)
class Attachment:
    """`style` says how the name stands in the message, `inline` a picture of a signature."""

    name: str
    data: bytes
    mime: str = "application/octet-stream"
    style: str = "quoted"
    inline: bool = False


@dataclass(slots=True, eq=False)
class Mail:
    """`headers` replace those that are made from the other fields; `part`, the content headers and
    the body, replaces the content. Bytes that are not UTF-8 stand in `headers` as surrogates."""

    message_id: str | None
    sender: Person | None
    to: list[Person]
    subject: str
    date: int
    lang: str
    charset: Charset
    text: str
    token: str
    cc: list[Person] = field(default_factory=list)
    bcc: list[Person] = field(default_factory=list)
    prefix: str = ""
    zone: int = 8 * 3600
    html: str | None = None
    flowed: bool = False
    references: tuple[str, ...] = ()
    attachments: list[Attachment] = field(default_factory=list)
    forwarded: Mail | None = None
    headers: tuple[tuple[str, str], ...] = ()
    part: tuple[bytes, bytes] | None = None
    received_after: int = 4
    display_date: int | None = field(init=False)
    date_received: int | None = field(init=False)
    date_sent: int | None = field(init=False)

    def __post_init__(self) -> None:
        self.display_date = self.date_sent = self.date
        self.date_received = self.date + self.received_after

    @property
    def number(self) -> int:
        """Mail's number for a message identity: signed, 64 bits wide, never 0."""
        return signed_hash(self.message_id or self.token)

    @property
    def conversation(self) -> int:
        first = self.references[0] if self.references else self.message_id or self.token
        return signed_hash(first) & 0x7FFFFFFF

    @property
    def recipients(self) -> list[tuple[int, Person]]:
        kinds = ((0, self.to), (1, self.cc), (2, self.bcc))
        return [(kind, person) for kind, people in kinds for person in people]


AS_IN_MAIL = object()


@dataclass(slots=True, eq=False)
class Copy:
    """One row of the index with its file.

    `file` is a key of `emlx.FORMS`, "partial" or "none". `columns` replaces columns of the row in
    `messages`; `id_header` and `index_names` replace what the index says of the Message-ID and the
    attachments. `stored` lists (part, name, data) files beside the message. `plain_names` is false
    where the name that a user should see depends on how a reader cleans it, so that no name can be
    promised.
    """

    mail: Mail
    mailbox: Mailbox
    tag: str = ""
    file: str = "whole"
    headers: tuple[tuple[str, str], ...] = ()
    columns: dict[str, object] = field(default_factory=dict)
    id_header: object = AS_IN_MAIL
    index_names: list[str | None] | None = None
    names: list[str] | None = None
    plain_names: bool = True
    stored: list[tuple[str, str, bytes]] = field(default_factory=list)
    apple_double: bool = False

    def attachment_names(self) -> list[str]:
        """Names of the true attachments, without pictures of a signature."""
        if self.names is not None:
            return self.names
        return [item.name for item in self.mail.attachments if not item.inline]

    def names_in_index(self) -> list[str | None]:
        if self.index_names is not None:
            return self.index_names
        return [item.name for item in self.mail.attachments]


def signed_hash(text: str) -> int:
    digest = hashlib.blake2b(text.encode(), digest_size=8).digest()
    return int.from_bytes(digest, "big", signed=True) or 1
