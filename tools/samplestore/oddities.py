"""The odd mail that every real store holds some of: broken files, strange names and subjects, rows
without a date, copies that differ. One pass over the catalogue gives each case once."""

from __future__ import annotations

import calendar
import dataclasses
import unicodedata
from collections.abc import Iterator

from .model import Attachment, Copy, Mail, Mailbox, Person
from .scenes import Family, Scenes, stored_files

EMOJI_FAMILY = "\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"

COLUMNS = [
    ("shown-date-0", {"display_date": 0}),
    ("shown-and-received-date-null", {"display_date": None, "date_received": None}),
    ("all-dates-0", {"display_date": 0, "date_received": 0, "date_sent": 0}),
    ("all-dates-null", {"display_date": None, "date_received": None, "date_sent": None}),
    ("size-0", {"size": 0}),
    ("number-0", {"message_id": 0}),
    ("number-null", {"message_id": None}),
    ("subject-null", {"subject": None, "subject_prefix": None}),
    ("sender-null", {"sender": None}),
]
ID_HEADERS = [
    ("id-empty", ""),
    ("id-null", None),
    ("id-bare", "{id}"),
    ("id-in-blanks-and-capitals", "  <{ID}> "),
]
FILES = [
    "none", "empty", "letters", "negative", "too-large", "cut-short", "overflow", "not-utf8",
    "no-line-feed", "zero-count", "crlf-message", "crlf-count", "headers-only",
]
SUBJECTS = [
    ("subject-300-characters", ("东湖新馆布展方案与各单位意见汇总" * 20)[:300]),
    ("subject-separators", 'A/B: C\\D? "E" <F>|G* 合同/附件：2019'),
    ("subject-controls", "第一行\x01\x02\t第二行\x7f\x1b[31m完"),
    ("subject-line-feeds", "报价\r\nBcc: all@huaxin.example\n更新"),
    ("subject-emoji-families", EMOJI_FAMILY * 31),
    ("subject-dots", "..."),
    ("subject-blanks", "   "),
    ("subject-empty", ""),
    ("subject-direction", "合同\u202efdp.exe"),
    ("subject-decomposed", unicodedata.normalize("NFD", "Résumé für Ärzte がぎぐ")),
    ("subject-quotes", "李明's \"最终\" `版`; DROP TABLE--"),
    ("subject-encoded-word", "如何解码 =?utf-8?B?5L2g5aW9?= a_b"),
    ("subject-formula", "=SUM(A1:A9)+@x"),
    ("subject-rare-characters", "𠮷野家 𡃁仔 \U0001F3F4\U000E0067\U000E0062\U000E007F 通知"),
]
SENDERS = [
    ("sender-quotes", Person('王"小"伟, 经理', "wang.xw@huaxin.example")),
    ("sender-escapes", Person("O'Brien, \"Bob\" \\ Sons", "bob@meridian.example")),
    ("sender-blanks", Person("   ", "blank@northlake.example")),
    ("sender-markup", Person("<b>Bold</b> & Co", "bold@brightpost.example")),
    ("sender-name-only", Person("只有名字", "")),
]
# Tag, name, how the message writes it, whether a user's name for it can be promised.
NAMES = [
    ("name-rfc2231", "合同（最终版）2019.pdf", "rfc2231", True),
    ("name-rfc2047", "展会照片清单 第三批.xlsx", "rfc2047", True),
    ("name-continued", "东湖新馆" * 15 + ".docx", "continued", True),
    ("name-raw-utf8", "采购申请表.docx", "raw", True),
    ("name-raw-gbk", "采购清单（盖章）.pdf", "gbk-bytes", True),
    ("name-caret-alone", "a^_b.pdf", "quoted", True),
    ("name-path-up", "../../x.pdf", "quoted", False),
    ("name-path-absolute", "/etc/cron.d/报表.sh", "quoted", False),
    ("name-path-windows", "C:\\Users\\lm\\报表.xls", "quoted", False),
    ("name-after-content-id", "<part1.abc@huaxin.example>report.pdf", "quoted", False),
    ("name-blank-before-ending", "report .pdf", "quoted", False),
    ("name-left-percent-encoded", "UTF-8''%E6%96%87%E4%BB%B6.pdf", "quoted", False),
    ("name-hidden", ".hidden.pdf", "quoted", False),
    ("name-tab", "a\tb.pdf", "quoted", False),
]
LOOSE_HEADERS = [
    ("date-two-digit-year", "Date", "Tue, 7 Jan 14 10:00:00 CST"),
    ("date-with-comment", "Date", "Tue, 7 Jan 2014 10:00:00 +0800 (China Standard Time)"),
    ("date-unreadable", "Date", "昨天下午"),
    ("subject-unknown-8bit", "Subject", "=?unknown-8bit?B?xOO6ww==?="),
    ("subject-bad-base64", "Subject", "=?utf-8?B?5L2g5aW9*?= ok"),
    ("headers-70-kilobytes", "X-Trace", ("trace=" + "0123456789abcdef" * 4 + ";\n ") * 1000 + "end"),
]


def raw_bytes(text: str, codec: str) -> str:
    return text.encode(codec).decode("utf-8", "surrogateescape")


class Oddities:
    def __init__(self, scenes: Scenes, places: dict[str, Mailbox]) -> None:
        self._scenes = scenes
        self._places = places
        accounts = [scenes.accounts[key] for key in ("work", "home", "exchange")]
        self._folders = [account.with_role("inbox", "folder", "archive") for account in accounts]
        self._turn = 0

    def families(self) -> Iterator[Family]:
        """One pass, with the groups mixed so that a short store has some of each."""
        groups = [
            self._columns(), self._copies(), self._files(), self._subjects(), self._names(),
            self._attachments(), self._places_without_files(), self._contents(), self._dates(),
            self._senders(), self._id_headers(), self._headers(),
        ]
        while groups:
            group = groups.pop(0)
            family = next(group, None)
            if family:
                groups.append(group)
                yield family

    # Building blocks

    def _mailboxes(self) -> list[Mailbox]:
        """Mailboxes of one account, another account each time."""
        self._turn += 1
        return self._folders[self._turn % len(self._folders)]

    def _mail(self, lang: str = "zh", **changes: object) -> Mail:
        scenes, wording = self._scenes, self._scenes.wording
        account = scenes.accounts["work"]
        sender = wording.person(lang)
        subject = str(changes.pop("subject", None) or wording.subject(lang))
        mail = scenes.mail(sender, [account.owner, *wording.colleagues(lang, 1)], subject,
                           wording.body(lang, sender.name), scenes.date(account), lang)
        return dataclasses.replace(mail, **changes)

    def _copy(self, mail: Mail, tag: str, mailbox: Mailbox | None = None, **more: object) -> Copy:
        mailbox = mailbox or self._scenes.rng.choice(self._mailboxes())
        return Copy(mail, mailbox, tag, headers=self._scenes.delivery_headers(mail, mailbox), **more)

    # Single messages

    def _columns(self) -> Iterator[Family]:
        for tag, columns in COLUMNS:
            yield [self._copy(self._mail(), tag, columns=dict(columns))]
        yield [self._copy(self._mail(to=[], cc=[]), "no-recipients")]

    def _id_headers(self) -> Iterator[Family]:
        for tag, form in ID_HEADERS:
            mail = self._mail()
            header = form and form.format(id=mail.message_id, ID=mail.message_id.upper())
            yield [self._copy(mail, tag, id_header=header)]
        yield [self._copy(self._mail(message_id=None), "no-message-id")]

    def _files(self) -> Iterator[Family]:
        for form in FILES:
            yield [self._copy(self._mail(), f"file-{form}", file=form)]
        mail = self._mail()
        mail.attachments = [self._scenes.wording.attachment("zh")]
        yield [self._copy(mail, "file-partial", file="partial",
                          stored=stored_files(mail.attachments))]
        yield [self._copy(self._mail(), "apple-double", apple_double=True)]

    def _subjects(self) -> Iterator[Family]:
        for tag, subject in SUBJECTS:
            mail = self._mail()
            mail.subject = subject
            yield [self._copy(mail, tag)]
        yield self._same_subject_one_day()

    def _same_subject_one_day(self) -> Family:
        mails = [self._mail(subject="日报") for _ in range(3)]
        for i, mail in enumerate(mails):
            mail.display_date = mail.date = mails[0].date // 86400 * 86400 + 14400 + i
        return [self._copy(mail, "same-subject-one-day") for mail in mails]

    def _senders(self) -> Iterator[Family]:
        for tag, sender in SENDERS:
            yield [self._copy(self._mail(sender=sender), tag)]

    def _dates(self) -> Iterator[Family]:
        """Both sides of new year, in UTC and in the user's zone eight hours ahead."""
        for year in (2014, 2023):
            midnight = calendar.timegm((year, 1, 1, 0, 0, 0))
            for seconds in (-8 * 3600 - 1, -8 * 3600, -1, 0):
                mail = self._mail(subject="新年快乐", date=midnight + seconds)
                yield [self._copy(mail, "new-year")]

    def _headers(self) -> Iterator[Family]:
        for tag, name, value in LOOSE_HEADERS:
            yield [self._copy(self._mail(headers=((name, value),)), tag)]
        mail = self._mail(subject="关于发票的说明")
        mail.headers = (("Subject", raw_bytes(mail.subject, "gb18030")),
                        ("X-Sender-Name", raw_bytes("财务部", "gb18030")))
        yield [self._copy(mail, "headers-raw-gbk")]

    def _contents(self) -> Iterator[Family]:
        text = self._scenes.wording.body("zh", "李明")
        traditional = self._scenes.wording.body("tw", "林志豪")
        plain = b"Content-Type: text/plain"
        yield self._with_part("body-no-charset", plain + b"\n", text.encode("gb18030"))
        yield self._with_part("body-wrong-charset", plain + b"; charset=iso-8859-1\n",
                              traditional.encode("big5"))
        yield self._with_part("body-not-base64", plain + b"; charset=utf-8\n"
                              b"Content-Transfer-Encoding: base64\n", text.encode())
        yield self._with_part("body-nul-bytes", plain + b"; charset=utf-8\n",
                              text.encode() + b"\0\0\xff\xfe\0 end\n")
        yield self._with_part("body-one-long-line", plain + b"; charset=utf-8\n",
                              (text.replace("\n", " ") * 400).encode())
        yield self._with_part("body-empty", plain + b"\n", b"")
        yield self._with_part("boundary-never-closed",
                              b'Content-Type: multipart/mixed; boundary="open"\n',
                              b"--open\n" + plain + b"; charset=utf-8\n\n" + text.encode())
        yield self._with_part("boundary-missing", b"Content-Type: multipart/mixed\n",
                              b"--open\n\n" + text.encode() + b"\n--open--\n")
        yield self._with_part("multiparts-40-deep", *nested_part(text, 40))

    def _with_part(self, tag: str, head: bytes, body: bytes) -> Family:
        return [self._copy(self._mail(part=(head, body)), tag)]

    def _places_without_files(self) -> Iterator[Family]:
        for tag, mailbox in self._places.items():
            for _ in range(2):
                mail = self._mail()
                columns = {} if mailbox.account else {"read": 1}
                yield [Copy(mail, mailbox, f"mailbox-{tag}", file="none", columns=columns)]
        old = self._scenes.accounts["local"].mailboxes[-1]
        yield [self._copy(self._mail(), "folder-inside-trash", old)]

    # Attachments

    def _names(self) -> Iterator[Family]:
        for tag, name, style, plain in NAMES:
            mail = self._mail()
            mail.attachments = [self._attachment(name, style)]
            stored = [] if "/" in name else stored_files(mail.attachments)
            yield [self._copy(mail, tag, plain_names=plain, stored=stored)]

    def _attachment(self, name: str, style: str = "quoted", size: int = 900) -> Attachment:
        kind = "jpg" if name.endswith(".jpg") else "pdf"
        return Attachment(name, self._scenes.wording.blob(kind, size), f"application/{kind}", style)

    def _with_files(self, *names: str) -> Mail:
        mail = self._mail()
        mail.attachments = [self._attachment(name, "rfc2231") for name in names]
        return mail

    def _attachments(self) -> Iterator[Family]:
        mail = self._with_files("清单.txt", "报价.pdf")
        yield [self._copy(mail, "names-joined-by-caret", index_names=["清单.txt^_报价.pdf"])]
        mail = self._with_files("说明.pdf")
        yield [self._copy(mail, "names-empty-and-null", index_names=["", None, "说明.pdf"])]
        mail = self._with_files("未入索引.pdf")
        yield [self._copy(mail, "stored-but-not-indexed", index_names=[],
                          stored=stored_files(mail.attachments))]
        mail = self._with_files("Report.PDF", "report.pdf")
        yield [self._copy(mail, "names-differ-by-case", plain_names=False)]
        mail = self._with_files("Résumé.pdf")
        decomposed = unicodedata.normalize("NFD", "Résumé.pdf")
        yield [self._copy(mail, "stored-name-decomposed",
                          stored=[("2", decomposed, mail.attachments[0].data)])]
        mail = self._with_files(*(f"附件{n}.pdf" for n in range(40)))
        yield [self._copy(mail, "attachments-40", stored=stored_files(mail.attachments))]
        yield self._pictures()

    def _pictures(self) -> Family:
        """From 500,000 bytes a stored picture is an attachment, below it a signature's."""
        mail = self._mail()
        mail.attachments = [self._attachment(f"照片{size}.jpg", "rfc2231", size)
                            for size in (499_999, 500_000, 520_000)]
        return [self._copy(mail, "pictures-around-the-limit",
                           stored=stored_files(mail.attachments),
                           names=["照片500000.jpg", "照片520000.jpg"])]

    # Copies

    def _copies(self) -> Iterator[Family]:
        yield self._differing("variant-pair", (0, 1))
        yield self._differing("variant-among-three", (0, 0, 1))
        yield self._differing("variants-three", (0, 1, 2))
        yield self._differing("variant-after-8192-bytes", (0, 1), "长文" * 3000 + "\n")
        yield self._twice("copy-with-other-line-ends", {}, {"file": "crlf-message"})
        yield self._twice("copy-damaged", {"file": "letters"}, {})
        yield self._twice("copy-empty", {"file": "empty"}, {})
        yield self._twice("copy-server-only", {"file": "none"}, {})
        yield self._copy_in_trash()
        yield self._more_attachments()
        yield self._larger_attachment()
        yield self._id_in_other_case()
        yield self._twice("copies-without-message-id", {}, {}, self._mail(message_id=None))

    def _twice(self, tag: str, first: dict[str, object], second: dict[str, object],
               mail: Mail | None = None) -> Family:
        mail = mail or self._mail()
        places = self._scenes.rng.sample(self._mailboxes(), 2)
        return [self._copy(mail, tag, place, **more)
                for place, more in zip(places, (first, second))]

    def _differing(self, tag: str, versions: tuple[int, ...], longer: str = "") -> Family:
        """Copies of one Message-ID; those with the same number have the same body."""
        mail = self._mail()
        text = mail.text + longer
        bodies = [dataclasses.replace(mail, text=text + "（本邮件已通过安全检查）\n" * n)
                  for n in range(max(versions) + 1)]
        places = self._scenes.rng.sample(self._mailboxes(), len(versions))
        return [self._copy(bodies[n], tag, place) for n, place in zip(versions, places)]

    def _copy_in_trash(self) -> Family:
        mail, account = self._mail(), self._scenes.accounts["work"]
        return [self._copy(mail, "copy-in-trash", account.with_role(role)[0])
                for role in ("trash", "inbox")]

    def _more_attachments(self) -> Family:
        full = self._with_files("图纸.pdf", "说明.pdf")
        less = dataclasses.replace(full, attachments=full.attachments[:1])
        places = self._scenes.rng.sample(self._mailboxes(), 2)
        return [self._copy(mail, "copy-with-more-attachments", place)
                for mail, place in zip((less, full), places)]

    def _larger_attachment(self) -> Family:
        mail = self._with_files("图纸.pdf")
        mail.attachments[0].data = self._scenes.wording.blob("pdf", 4200)
        name, data = mail.attachments[0].name, mail.attachments[0].data
        return self._twice("copy-with-larger-attachment", {"stored": [("2", name, data[:1000])]},
                           {"stored": [("2", name, data)]}, mail)

    def _id_in_other_case(self) -> Family:
        family = self._twice("id-in-other-case", {}, {})
        mail = family[0].mail
        family[1].columns = {"message_id": mail.number ^ 1}
        family[1].id_header = f"<{mail.message_id.upper()}>"
        return family


def nested_part(text: str, depth: int) -> tuple[bytes, bytes]:
    head, body = b"Content-Type: text/plain; charset=utf-8\n", text.encode()
    for level in range(depth):
        marker = f"--level{level}".encode()
        body = marker + b"\n" + head + b"\n" + body + b"\n" + marker + b"--\n"
        head = f'Content-Type: multipart/mixed; boundary="level{level}"\n'.encode()
    return head, body
