#!/usr/bin/env python3
"""Makes seeds for the fuzz targets from the odd mail of the worker's tests and of the sample store, and small values of
each form that a target reads. The same each time; takes some seconds."""

import json
import pathlib
import plistlib
import shutil
import sqlite3
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
LONGEST = 4096
sys.path[:0] = [str(ROOT / "tests" / "worker"), str(ROOT / "tools")]
sys.dont_write_bytecode = True

import odd_mail  # noqa: E402

BASE = "AAAAAAAA-1111-2222-3333-444444444444"
PROPERTY_LISTS = [
    {}, {"AccountEmailAddress": "me@example.org", "EmailAddress": "你@例子.cn"}, {"IsNoteFolder": True, "x": False},
    {"array": ["a", 1, 2.5, b"data", {"deep": "text"}], "AccountEmailAddress": "𠮷" * 20}, {"long": "x" * 300, "": ""},
    {"escapes": "<&>\"'\n\t", "numbers": [0, -1, 255, 65536, 2 ** 63 - 1]},
]
SETTINGS = [
    "{}", '{"language": "zh", "roots": ["/a", "/b"], "names": {"/a": "甲"}}', '{"a": 1.5e300, "b": [1, null, true], "c": {"d": {}}}',
    '{"twice": "1", "twice": ["2"]}', "[]", '{"a": "\\ud83d\\ude00\\u0000\\n"}', '{"n": -0, "m": 12345678901234567890}', '{"list": 1, "map": [], "text": {}}',
]
QUERIES = [
    "报告", "报", "纪要", "合同（终", "strasse", "ß", "İ", "ff", "aaaa", "%_", "100%", "a\\b", "\"", "'", "*", "AND", "NEAR", "subject:", "\ufffe", "é", "e\u0301",
    "\U0001F468\u200D", "𠮷野", "  x  ", "\u3000", "abababababababababababababababababab", "报告" * 20,
]
HOSTILE_SEARCH = [
    "DROP TABLE email_fts; CREATE TABLE email_fts(record_id, subject, sender, recipients, attachments, body);",
    "CREATE TRIGGER t AFTER INSERT ON record_map BEGIN DELETE FROM email_fts; END;", "UPDATE meta SET value = 'x';", "DELETE FROM email_fts_data;",
    "UPDATE email_fts_data SET block = zeroblob(40) WHERE id > 10;", "DELETE FROM email_fts_content WHERE id % 2;", "UPDATE email_fts_config SET v = 99;",
    "DROP TABLE email_fts; CREATE VIEW email_fts AS SELECT 'v' AS record_id, 's' AS subject, '' AS sender, '' AS recipients, '' AS attachments, 'p' AS body, 1 AS rowid;",
    "UPDATE sqlite_schema SET sql = replace(sql, 'trigram', 'unicode61') WHERE name = 'email_fts';", "UPDATE sqlite_schema SET rootpage = 2;",
    "DROP TABLE record_map; CREATE TABLE record_map(record_id TEXT, fts_rowid TEXT); INSERT INTO record_map SELECT record_id, 'x' FROM email_fts;",
    "INSERT INTO email_fts(email_fts, rank) VALUES('pgsz', 32);", "INSERT INTO email_fts_content VALUES(9e18, 'id', x'ff00', 1.5, NULL, zeroblob(9), 'x');",
    "CREATE TABLE x(a GENERATED ALWAYS AS (hex(randomblob(9))) STORED); DROP TABLE meta;", "DROP TABLE meta; CREATE TABLE meta(key, value CHECK(length(value) < 0));",
]
HOSTILE_INDEX = [
    "DROP TABLE mailboxes; CREATE VIEW mailboxes AS WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT x AS ROWID, 'u' AS url FROM c;",
    "DROP TABLE subjects; CREATE VIEW subjects AS SELECT 1 AS ROWID, load_extension('x') AS subject;", "UPDATE messages SET mailbox = NULL, date_received = 'x';",
    "UPDATE mailboxes SET url = x'ff00fe';", "UPDATE addresses SET comment = char(0, 10, 34, 8238), address = CAST(x'80' AS TEXT);", "UPDATE messages SET display_date = 9e18, size = -1;",
    "UPDATE attachments SET name = char(31) || name || '^_' || char(31);", "UPDATE message_global_data SET message_id = 1;", "DROP TABLE message_global_data;",
    "UPDATE sqlite_schema SET rootpage = 3 WHERE name = 'messages';", "INSERT INTO messages(ROWID, mailbox, date_received) VALUES(9223372036854775807, 1, 1.5);",
    "DROP TABLE addresses; CREATE TABLE addresses(ROWID TEXT, address BLOB, comment GENERATED ALWAYS AS (abs(-9223372036854775808)));",
]
HOSTILE_PROOFS = [
    "UPDATE copy_reading SET hash = x'00', outcome = 9;", "DROP TABLE copy_reading; CREATE TABLE copy_reading(path, size, modified, outcome, hash, body_hash, read_at);",
    "PRAGMA user_version = 7;", "PRAGMA user_version = 0;", "UPDATE archived_reading SET read_at = 9e18, size = 'x', path = x'ff00';", "DELETE FROM archived_reading;",
    "CREATE TRIGGER t AFTER INSERT ON copy_reading BEGIN DELETE FROM copy_reading; END;", "UPDATE sqlite_schema SET rootpage = 2;",
    "DROP TABLE archived_reading; CREATE VIEW archived_reading AS WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT x AS root, x AS path FROM c;",
]
DAMAGE = [bytes([5, 0, 16, n, 255]) for n in range(0, 64, 9)] + [
    bytes([3, 18, 2]), bytes([19, 16, 2, 0]), bytes([4, 1, 0]) + b"\x0d", bytes([4, 2, 3]) + b"\xff", bytes([1, 2, 3]), bytes([0, 0, 40, 0]), bytes([2, 0, 32, 0, 255, 64])]


def sample_store(folder):
    """The message files of a sample store, and the rows that its index gives."""
    subprocess.run([sys.executable, ROOT / "tools" / "make_sample_store.py", folder, "--quiet", "--messages=600", "--seed=3"], check=True)
    mail = pathlib.Path(folder) / "Library" / "Mail"
    files = [path.read_bytes() for path in sorted(mail.rglob("*.emlx")) if path.stat().st_size <= LONGEST]
    lists = [path.read_bytes() for path in sorted(mail.rglob("*.plist")) if path.stat().st_size <= LONGEST]
    with sqlite3.connect(next(mail.rglob("Envelope Index"))) as index:
        index.text_factory = lambda value: value.decode("utf-8", "replace")
        rows = index.execute("SELECT m.ROWID, b.url, coalesce(s.subject, ''), coalesce(a.comment, ''), coalesce(a.address, ''), m.date_received, m.size"
                             " FROM messages m JOIN mailboxes b ON b.ROWID = m.mailbox LEFT JOIN subjects s ON s.ROWID = m.subject"
                             " LEFT JOIN addresses a ON a.ROWID = m.sender GROUP BY s.subject ORDER BY m.ROWID DESC LIMIT 80").fetchall()
    return files, lists, rows


def shell_json(rows):
    names = ("rowid", "url", "subject", "senderName", "senderAddress", "msgDate", "msgSize")
    return ("[" + ",\n".join(json.dumps(dict(zip(names, row)), ensure_ascii=False, separators=(",", ":")) for row in rows) + "]\n").encode()


def archive_record(row):
    number, url, subject, name, address, date, size = row
    return {"id": f"ck:{number}#v1", "subject": subject, "sender": f"{name} <{address}>", "recipients": "", "mailbox": url, "sizeBytes": size or 0,
            "attachmentNames": ["合同.pdf", subject[:9]], "emlRelativePath": f"2019/a/{number}.eml", "sourceCopyCount": 2, "sourceCopiesIdentical": False,
            "archivedAt": "2024-01-01T00:00:00Z", "date": "2019-03-01T08:00:00Z", "contentHash": "sha256:" + "ab" * 32}


def damage_seeds(statements):
    return [b"SQL:" + text.encode() for text in statements] + DAMAGE


def all_seeds(folder):
    files, lists, rows = sample_store(folder)
    mails = [message for _, message, _, _ in odd_mail.all_cases() if len(message) <= LONGEST][::17]
    index = {"version": 1, "createdAt": "2024-01-01T00:00:00Z", "updatedAt": "2024-01-01T00:00:00Z", "records": [archive_record(row) for row in rows[:3]]}
    yield "header_decoding", mails + files[::4] + [str(row[2]).encode() for row in rows]
    yield "header_summary", mails[::2] + files[::8]
    yield "body_splitting", [text.encode() for text in odd_mail.TEXTS.values()] + mails[::9]
    yield "mime_walk", mails + files[::4]
    yield "emlx_cutting", [b"%d\n" % len(each) + each + b"<?xml version=\"1.0\"?><plist/>" for each in mails[::5]] + files[::6]
    yield "property_list", lists[:20] + [plistlib.dumps(each, fmt=form) for each in PROPERTY_LISTS for form in (plistlib.FMT_XML, plistlib.FMT_BINARY)]
    yield "shell_rows", [shell_json(rows[at:at + 3]) for at in range(0, len(rows), 5)] + [b"\n".join(str(row[2]).encode() for row in rows[:9]), b"[]\n", b""]
    yield "archive_index", [json.dumps(index, indent=2, ensure_ascii=False).encode()]
    yield "settings", [each.encode() for each in SETTINGS]
    yield "search_queries", [each.encode("utf-8", "surrogatepass") for each in QUERIES] + [
        f"{row[2][1:5]}\x1e{row[2]}\x1e{row[3]}\x1e{row[4]}\x1e合同.pdf\x1e{row[1]}".encode() for row in rows[::4]] + [bytes((31, n, 3 * n, n)) + b"\x1etext" for n in range(1, 9)]
    yield "search_database", damage_seeds(HOSTILE_SEARCH)
    yield "proof_store", damage_seeds(HOSTILE_PROOFS)
    yield "envelope_index", damage_seeds(HOSTILE_INDEX)


def make(folder):
    """Fills the folder with one folder of seeds a target, unless this program has done so already."""
    if folder.is_dir() and folder.stat().st_mtime > pathlib.Path(__file__).stat().st_mtime:
        return
    fresh = folder.with_suffix(".new")
    shutil.rmtree(fresh, ignore_errors=True)
    with tempfile.TemporaryDirectory() as home:
        for target, seeds in all_seeds(home):
            (fresh / target).mkdir(parents=True, exist_ok=True)
            for number, seed in enumerate(seeds):
                (fresh / target / f"{number:03}").write_bytes(seed)
    shutil.rmtree(folder, ignore_errors=True)
    fresh.rename(folder)
    folder.touch()


if __name__ == "__main__":
    make(pathlib.Path(sys.argv[1]))
