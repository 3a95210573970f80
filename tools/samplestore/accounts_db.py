"""Writes the system's accounts database, which knows the addresses behind the account folders."""

from __future__ import annotations

import sqlite3

from .model import Account

SCHEMA = """
CREATE TABLE ZACCOUNTTYPE (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER,
  ZACCOUNTTYPEDESCRIPTION VARCHAR, ZIDENTIFIER VARCHAR);
CREATE TABLE ZACCOUNT (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, ZACTIVE INTEGER,
  ZAUTHENTICATED INTEGER, ZSUPPORTSAUTHENTICATION INTEGER, ZVISIBLE INTEGER, ZACCOUNTTYPE INTEGER,
  ZPARENTACCOUNT INTEGER, ZDATE TIMESTAMP, ZACCOUNTDESCRIPTION VARCHAR, ZIDENTIFIER VARCHAR,
  ZOWNINGBUNDLEID VARCHAR, ZUSERNAME VARCHAR, ZDATACLASSPROPERTIES BLOB);
CREATE INDEX ZACCOUNT_ZACCOUNTTYPE_INDEX ON ZACCOUNT(ZACCOUNTTYPE);
CREATE INDEX ZACCOUNT_ZPARENTACCOUNT_INDEX ON ZACCOUNT(ZPARENTACCOUNT);
"""
TYPES = ["com.apple.account.IMAP", "com.apple.account.Exchange", "com.apple.account.Google",
         "com.apple.account.CalDAV"]


def write_accounts_db(path: str, accounts: dict[str, Account], inferred: bool = False) -> None:
    """Each address comes another way: from the user name, the parent account, the description. The
    redundant account and the local store are unknown here, as after they were removed. With
    `inferred` so is a large account, whose address only its mail tells."""
    work, home, exchange = accounts["work"], accounts["home"], accounts["exchange"]
    parent = "0D7A1B52-6E1C-4F0A-9C55-2A1F0F5E7C11"
    rows = [
        (1, 1, None, work.label, work.uuid, work.address),
        (2, 3, None, "Brightpost", parent, home.address),
        (3, 1, 2, None, home.uuid, None),
        (4, 4, 2, "Calendar | Brightpost", "7C0C6C1E-2F50-4B8E-8C64-0C7B63A0E9D2", None),
        (5, 2, None, f"Exchange ({exchange.address})", exchange.uuid, "MERIDIAN\\ming"),
        (6, 1, None, "Unused", accounts["empty"].uuid, accounts["empty"].address),
        (7, 4, None, "no identifier", None, "nobody@unifield.example"),
    ]
    if inferred:
        rows = [row for row in rows if row[4] != home.uuid]
    db = sqlite3.connect(path, isolation_level=None)
    db.executescript("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; BEGIN;" + SCHEMA)
    db.executemany("INSERT INTO ZACCOUNTTYPE VALUES (?, 4, 1, ?, ?)",
                   [(i, name.rpartition(".")[2], name) for i, name in enumerate(TYPES, 1)])
    db.executemany("INSERT INTO ZACCOUNT(Z_PK, Z_ENT, Z_OPT, ZACTIVE, ZAUTHENTICATED, ZVISIBLE, "
                   "ZACCOUNTTYPE, ZPARENTACCOUNT, ZACCOUNTDESCRIPTION, ZIDENTIFIER, ZUSERNAME) "
                   "VALUES (?, 2, 5, 1, 1, 1, ?, ?, ?, ?, ?)", rows)
    db.execute("COMMIT")
    db.close()
