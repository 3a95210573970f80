"""Writes an Envelope Index: the SQLite database in which Mail lists its messages."""

from __future__ import annotations

import os
import shutil
import sqlite3
from collections.abc import Iterable

from .model import Copy, Mailbox, Person

BATCH_ROWS = 20_000

SCHEMA = """
CREATE TABLE properties (ROWID INTEGER PRIMARY KEY, key, value, UNIQUE(key));
CREATE TABLE messages (ROWID INTEGER PRIMARY KEY AUTOINCREMENT, message_id INTEGER,
  global_message_id INTEGER, remote_id INTEGER, document_id TEXT, sender INTEGER,
  subject_prefix TEXT, subject INTEGER, summary INTEGER, date_sent INTEGER, date_received INTEGER,
  mailbox INTEGER NOT NULL, remote_mailbox INTEGER, flags INTEGER NOT NULL DEFAULT 0,
  read INTEGER NOT NULL DEFAULT 0, flagged INTEGER NOT NULL DEFAULT 0,
  deleted INTEGER NOT NULL DEFAULT 0, size INTEGER NOT NULL DEFAULT 0,
  conversation_id INTEGER NOT NULL DEFAULT 0, date_last_viewed INTEGER, list_id_hash INTEGER,
  unsubscribe_type INTEGER, searchable_message INTEGER, brand_indicator INTEGER,
  display_date INTEGER, color TEXT, type INTEGER);
CREATE TABLE mailboxes (ROWID INTEGER PRIMARY KEY, url TEXT UNIQUE,
  total_count INTEGER NOT NULL DEFAULT 0, unread_count INTEGER NOT NULL DEFAULT 0,
  deleted_count INTEGER NOT NULL DEFAULT 0, unseen_count INTEGER NOT NULL DEFAULT 0,
  source INTEGER, alleged_change_identifier TEXT);
CREATE TABLE subjects (ROWID INTEGER PRIMARY KEY, subject TEXT NOT NULL UNIQUE);
CREATE TABLE addresses (ROWID INTEGER PRIMARY KEY, address TEXT NOT NULL, comment TEXT,
  UNIQUE(address, comment));
CREATE TABLE recipients (ROWID INTEGER PRIMARY KEY, message INTEGER NOT NULL,
  address INTEGER NOT NULL, type INTEGER, position INTEGER);
CREATE TABLE attachments (ROWID INTEGER PRIMARY KEY, message INTEGER NOT NULL, attachment_id TEXT,
  name TEXT);
CREATE TABLE message_global_data (ROWID INTEGER PRIMARY KEY, message_id INTEGER,
  follow_up_start_date INTEGER, follow_up_end_date INTEGER,
  download_state INTEGER NOT NULL DEFAULT 0, read_later_date INTEGER, send_later_date INTEGER,
  model_category INTEGER{header_column});
CREATE TABLE summaries (ROWID INTEGER PRIMARY KEY, summary TEXT NOT NULL);
CREATE TABLE labels (message_id INTEGER, mailbox_id INTEGER, PRIMARY KEY(message_id, mailbox_id))
  WITHOUT ROWID;
INSERT INTO properties (key, value) VALUES ('UUID', 'sample'), ('version', 43);
"""
INDEXES = """
CREATE INDEX messages_message_id_index ON messages(message_id);
CREATE INDEX messages_mailbox_index ON messages(mailbox, date_received);
CREATE INDEX messages_conversation_index ON messages(conversation_id);
CREATE INDEX messages_subject_index ON messages(subject);
CREATE INDEX messages_sender_index ON messages(sender);
CREATE INDEX messages_display_date_index ON messages(display_date);
CREATE INDEX recipients_message_index ON recipients(message);
CREATE INDEX recipients_address_index ON recipients(address);
CREATE INDEX attachments_message_index ON attachments(message);
CREATE INDEX message_global_data_message_id_index ON message_global_data(message_id);
"""
MESSAGE_COLUMNS = (
    "ROWID", "message_id", "global_message_id", "remote_id", "sender", "subject_prefix", "subject",
    "date_sent", "date_received", "mailbox", "flags", "read", "size", "conversation_id",
    "display_date")
COUNTS = """
UPDATE mailboxes SET
  total_count = (SELECT COUNT(*) FROM messages m WHERE m.mailbox = mailboxes.ROWID),
  unread_count = (SELECT COUNT(*) FROM messages m WHERE m.mailbox = mailboxes.ROWID AND m.read = 0);
"""


class EnvelopeIndex:
    """Rows are gathered and go out in large batches. With `wal` the last batch stays in the
    write-ahead log, as Mail leaves it while it runs."""

    def __init__(self, path: str, header_column: bool = True, wal: bool = False) -> None:
        self._path = path
        self._wal = wal
        self._header_column = header_column
        self._db = sqlite3.connect(path, isolation_level=None)
        self._db.executescript("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;")
        column = ", message_id_header TEXT" if header_column else ""
        self._db.executescript("BEGIN;" + SCHEMA.format(header_column=column) + "COMMIT;")
        self._subjects: dict[str, int] = {}
        self._addresses: dict[Person, int] = {}
        self._global_rows = 0
        self._messages: list[tuple] = []
        self._pending: dict[str, list[tuple]] = {
            "subjects(ROWID, subject)": [],
            "addresses(ROWID, address, comment)": [],
            "recipients(message, address, type, position)": [],
            "attachments(message, attachment_id, name)": [],
            f"message_global_data(ROWID, message_id{', message_id_header' * header_column})": [],
        }
        (self._new_subjects, self._new_addresses, self._recipients, self._attachments,
         self._global_data) = self._pending.values()

    def add_mailboxes(self, mailboxes: Iterable[Mailbox]) -> None:
        self._db.executemany("INSERT INTO mailboxes(ROWID, url) VALUES (?, ?)",
                             [(mailbox.rowid, mailbox.url) for mailbox in mailboxes])

    def add_global_data(self, message_id: int, header: str | None) -> int:
        self._global_rows += 1
        row = (self._global_rows, message_id, header)
        self._global_data.append(row if self._header_column else row[:2])
        return self._global_rows

    def add_message(self, rowid: int, copy: Copy, subject: str | None, size: int,
                    global_row: int | None) -> None:
        if len(self._messages) >= BATCH_ROWS:
            self._flush()
        mail = copy.mail
        values = {
            "ROWID": rowid, "message_id": mail.number, "global_message_id": global_row,
            "remote_id": rowid * 3 + 1, "sender": self._address(mail.sender),
            "subject_prefix": mail.prefix, "subject": self._subject(subject),
            "date_sent": mail.date_sent, "date_received": mail.date_received,
            "mailbox": copy.mailbox.rowid, "flags": 8590195713, "read": int(rowid % 11 != 0),
            "size": size, "conversation_id": mail.conversation, "display_date": mail.display_date,
            **copy.columns,
        }
        self._messages.append(tuple(values[column] for column in MESSAGE_COLUMNS))
        for position, (kind, person) in enumerate(mail.recipients):
            self._recipients.append((rowid, self._address(person), kind, position))
        for i, name in enumerate(copy.names_in_index()):
            self._attachments.append((rowid, str(i + 2), name))

    def _subject(self, subject: str | None) -> int | None:
        if subject is None:
            return None
        row = self._subjects.get(subject)
        if row is None:
            row = self._subjects[subject] = len(self._subjects) + 1
            self._new_subjects.append((row, subject))
        return row

    def _address(self, person: Person | None) -> int | None:
        if person is None:
            return None
        row = self._addresses.get(person)
        if row is None:
            row = self._addresses[person] = len(self._addresses) + 1
            comment = person.name or ("" if row % 2 else None)
            self._new_addresses.append((row, person.address, comment))
        return row

    def _flush(self) -> None:
        self._db.execute("BEGIN")
        columns = ", ".join(MESSAGE_COLUMNS)
        marks = ", ".join("?" * len(MESSAGE_COLUMNS))
        self._db.executemany(f"INSERT INTO messages({columns}) VALUES ({marks})", self._messages)
        for target, rows in self._pending.items():
            marks = ", ".join("?" * (target.count(",") + 1))
            self._db.executemany(f"INSERT INTO {target} VALUES ({marks})", rows)
            rows.clear()
        self._messages.clear()
        self._db.execute("COMMIT")

    def finish(self) -> None:
        if self._wal:
            self._finish_in_log()
            return
        self._flush()
        self._db.executescript("BEGIN;" + INDEXES + COUNTS + "COMMIT;")
        self._db.close()

    def _finish_in_log(self) -> None:
        self._db.executescript("BEGIN;" + INDEXES + "COMMIT; PRAGMA journal_mode=WAL;"
                               "PRAGMA wal_autocheckpoint=0;")
        self._flush()
        self._db.executescript("BEGIN;" + COUNTS + "COMMIT;")
        # Closing would move the log into the database, so what lies on the disk now is put aside.
        endings = ("", "-wal", "-shm")
        for ending in endings:
            shutil.copyfile(self._path + ending, f"{self._path}{ending}.kept")
        self._db.close()
        for ending in endings:
            os.replace(f"{self._path}{ending}.kept", self._path + ending)
