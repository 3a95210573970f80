#!/usr/bin/env python3
"""Makes a home directory with a realistic Apple Mail store: accounts, mailboxes, an Envelope Index,
message files, and `sample-store.json`, which tells what a right reader must find."""

from __future__ import annotations

import argparse
import os
import sqlite3
import sys
import time

from samplestore.store import FEWEST_MESSAGES, MOST_MESSAGES, SampleStore, Settings


def parser() -> argparse.ArgumentParser:
    result = argparse.ArgumentParser(description=__doc__)
    defaults = Settings()
    switch = argparse.BooleanOptionalAction
    result.add_argument("home", metavar="HOME", help="made if missing; must not hold a Mail store")
    result.add_argument("--messages", type=message_count, default=defaults.messages, metavar="N",
                        help=f"rows in the index, {FEWEST_MESSAGES} to {MOST_MESSAGES} "
                             "(default %(default)s)")
    result.add_argument("--seed", type=int, default=defaults.seed, metavar="S",
                        help="another store for each seed (default %(default)s)")
    result.add_argument("--files", action=switch, default=True,
                        help="write message and attachment files; without them all is server only")
    result.add_argument("--odd", action=switch, default=True,
                        help="strew in odd and broken messages")
    result.add_argument("--manifest", action=switch, default=True, help="write sample-store.json")
    result.add_argument("--wal", action="store_true",
                        help="leave the index in WAL mode with its last rows in the log")
    result.add_argument("--message-id-header", action=switch, default=True,
                        help="have the column message_id_header in the index")
    result.add_argument("--accounts-db", action=switch, default=True,
                        help="write the system's accounts database")
    result.add_argument("--server-only", type=percent, default=defaults.server_only_percent,
                        metavar="PERCENT", help="everyday messages without a file "
                                                "(default %(default)s)")
    result.add_argument("--inferred-accounts", action="store_true",
                        help="leave the address of a large account to be inferred, and add a second "
                             "local store")
    result.add_argument("--quiet", action="store_true", help="print nothing but errors")
    return result


def message_count(text: str) -> int:
    count = int(text)
    if not FEWEST_MESSAGES <= count <= MOST_MESSAGES:
        raise argparse.ArgumentTypeError(f"must be {FEWEST_MESSAGES} to {MOST_MESSAGES}")
    return count


def percent(text: str) -> float:
    value = float(text)
    if not 0 <= value <= 100:
        raise argparse.ArgumentTypeError("must be 0 to 100")
    return value


def refuse_used_home(home: str) -> None:
    # A real home directory named by mistake must come to no harm.
    for taken in ("Library/Mail", "Library/Accounts", "sample-store.json"):
        path = os.path.join(home, taken)
        if os.path.lexists(path):
            raise SystemExit(f"make_sample_store: {path} is already there; name an unused folder")


def main() -> int:
    options = parser().parse_args()
    refuse_used_home(options.home)
    settings = Settings(options.messages, options.seed, options.files, options.odd,
                        options.manifest, options.wal, options.message_id_header,
                        options.accounts_db, options.server_only, options.inferred_accounts)
    began = time.monotonic()
    try:
        counts = SampleStore(options.home, settings, options.quiet).make()
    except (OSError, sqlite3.Error) as error:
        raise SystemExit(f"make_sample_store: {error}") from error
    if not options.quiet:
        told = ", ".join(f"{name} {count}" for name, count in sorted(counts.items()))
        print(f"{options.home}: {told}; {time.monotonic() - began:.1f} s", file=sys.stderr)
    return 0


if __name__ == "__main__":
    sys.exit(main())
