"""The accounts of the made-up user, their mailboxes, and where these lie in the store."""

from __future__ import annotations

import hashlib
import urllib.parse
import uuid

from .model import Account, Mailbox, Person

STORE_VERSION = "V10"
DANGLING_MAILBOX = 99_999

# Key, scheme, owner, label, whether a folder level lies between ".mbox" and "Data".
ACCOUNTS = [
    ("work", "imap", Person("李明", "li.ming@huaxin.example"), "华信工作邮箱", True),
    ("home", "imap", Person("Ming Li", "mingli@brightpost.example"), "Brightpost", False),
    ("exchange", "ews", Person("Li, Ming", "li.ming@meridian.example"), "Meridian Exchange", True),
    ("local", "local", Person("李明", "li.ming@huaxin.example"), "On My Mac", False),
    ("copy", "imap", Person("李明", "liming2010@qingmail.example"), "华信（旧）", True),
    ("empty", "imap", Person("", "unused@unifield.example"), "Unused", True),
]
# Only in a store whose accounts are to be inferred.
SECOND_LOCAL_STORE = ("old", "local", Person("Ming Li", "mingli@brightpost.example"), "Old Mac", False)

# Role and path; the roles decide what mail goes there.
MAILBOXES = {
    "work": [
        ("inbox", "INBOX"), ("sent", "Sent Messages"), ("archive", "Archive"),
        ("folder", "工作/东湖新馆"), ("folder", "工作/2019年"), ("folder", "客户 & 合同"),
        ("folder", "Kids' School"), ("trash", "Deleted Messages"), ("junk", "Junk"),
    ],
    "home": [
        ("inbox", "INBOX"), ("archive", "[Gmail]/All Mail"), ("sent", "[Gmail]/已发送邮件"),
        ("trash", "[Gmail]/已删除邮件"), ("junk", "[Gmail]/垃圾邮件"), ("folder", "旅行"),
        ("folder", "家庭/照片 100%"),
    ],
    "exchange": [
        ("inbox", "Inbox"), ("sent", "Sent Items"), ("archive", "Archive"),
        ("folder", "Projects/Harbour Study"), ("folder", "Projects"), ("trash", "Deleted Items"),
        ("junk", "Junk E-mail"),
    ],
    "local": [
        ("archive", "旧邮件归档"), ("folder", "Imported/Outlook 2012.mbox"), ("folder", "导入"),
        ("folder", "Archive/Trash/Old"),
    ],
    "copy": [("inbox", "INBOX"), ("archive", "Archive"), ("sent", "Sent Messages")],
    "empty": [("inbox", "INBOX")],
    "old": [("archive", "Archive 2012"), ("folder", "搬家")],
}
IMPORTED = {"Imported/Outlook 2012.mbox": True, "导入": "YES", "INBOX": False}


def stable_uuid(*parts: object) -> str:
    digest = hashlib.blake2b("/".join(map(str, parts)).encode(), digest_size=16).digest()
    return str(uuid.UUID(bytes=digest, version=4)).upper()


def make_accounts(seed: int, inferred: bool = False) -> dict[str, Account]:
    accounts = {}
    rowid = 0
    for key, scheme, owner, label, inner_level in ACCOUNTS + [SECOND_LOCAL_STORE] * inferred:
        account = Account(key, stable_uuid(seed, key), scheme, owner, label, owner.address,
                          inner_level=inner_level)
        for role, path in MAILBOXES[key]:
            rowid += 1
            account.mailboxes.append(make_mailbox(rowid, account, role, path, seed))
        accounts[key] = account
    for local, linked in (("local", "work"), ("old", "home")):
        if local in accounts:
            accounts[local].address = None
            accounts[local].linked_address = accounts[linked].address
    return accounts


def mailbox_url(account: Account, path: str) -> str:
    components = (urllib.parse.quote(part, safe="'()&") for part in path.split("/"))
    return f"{account.scheme}://{account.uuid}/{'/'.join(components)}"


def mailbox_folder(account: Account, path: str) -> str:
    names = (part if part.endswith(".mbox") else part + ".mbox" for part in path.split("/"))
    return "/".join([account.uuid, *names])


def make_mailbox(rowid: int, account: Account, role: str, path: str, seed: int) -> Mailbox:
    folder = mailbox_folder(account, path)
    level = [stable_uuid(seed, account.key, path)] if account.inner_level else []
    return Mailbox(rowid, account, mailbox_url(account, path), role, folder,
                   "/".join([folder, *level, "Data"]), IMPORTED.get(path))


def odd_mailboxes(accounts: dict[str, Account]) -> dict[str, Mailbox]:
    """Mailboxes that rows name and that have no place for files."""
    work, exchange = accounts["work"], accounts["exchange"]
    shell = mailbox_folder(exchange, "Empty Shell")
    return {
        "gone": Mailbox(901, work, mailbox_url(work, "已移走的文件夹"), "odd", None, None),
        "no-data": Mailbox(902, exchange, mailbox_url(exchange, "Empty Shell"), "odd", shell, None),
        "dangling": Mailbox(DANGLING_MAILBOX, None, None, "odd", None, None),
    }
