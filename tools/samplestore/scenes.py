"""Everyday mail: threads, letters, newsletters, notices, forwards, spam. Each scene gives families,
a family being one message with all its copies."""

from __future__ import annotations

import calendar
import random
from collections.abc import Callable, Iterator

from . import vocabulary as words
from .model import Account, Attachment, Copy, Mail, Mailbox, Person
from .mime import content_id
from .wording import Wording

Family = list[Copy]

FIRST_DAY = calendar.timegm((2010, 1, 1, 0, 0, 0))
LAST_DAY = calendar.timegm((2025, 6, 30, 0, 0, 0))
LOCAL_STORE_ENDS = calendar.timegm((2016, 1, 1, 0, 0, 0))

ACCOUNT_WEIGHTS = {"work": 38, "home": 28, "exchange": 18, "local": 13, "copy": 3, "old": 6}
LANGUAGES = {
    "work": (["zh", "en", "tw", "ja"], [70, 20, 5, 5]),
    "home": (["zh", "en", "tw"], [60, 30, 10]),
    "exchange": (["en", "zh", "ja"], [75, 20, 5]),
    "local": (["zh", "en", "tw"], [80, 15, 5]),
    "copy": (["zh", "en"], [80, 20]),
    "old": (["zh", "en"], [60, 40]),
}
ZONES = {"zh": [8], "tw": [8], "ja": [9], "en": [0, 1, 2, -5, -8]}
MAILERS = ["Apple Mail (2.3445.104.11)", "Foxmail 7.2.25", "Microsoft Outlook 16.0", "QingMail 5.1"]


class Scenes:
    def __init__(self, rng: random.Random, wording: Wording, accounts: dict[str, Account],
                 server_only: float) -> None:
        self.rng = rng
        self.wording = wording
        self.accounts = accounts
        self.server_only = server_only
        self._made = 0
        self._shared_with_copy = 0
        self._only_in_copy = 0
        scenes: list[tuple[int, Callable[[Account], Iterator[Family]]]] = [
            (22, self.thread), (30, self.letter), (16, self.newsletter), (14, self.notice),
            (4, self.forward), (5, self.spam),
        ]
        self._weights, self._scenes = zip(*scenes)

    def families(self) -> Iterator[Family]:
        yield from self.staples()
        while True:
            scene = self.rng.choices(self._scenes, self._weights)[0]
            yield from scene(self.account())

    def staples(self) -> Iterator[Family]:
        """What even the smallest store needs: sent and received mail that tells each address, and
        enough shared mail to make the redundant account one."""
        for key in ("work", "home", "exchange", "copy"):
            account = self.accounts[key]
            sent, received = self.plain_mail(account, True), self.plain_mail(account, False)
            yield [self.copy(sent, account.with_role("sent")[0])]
            yield [self.copy(received, account.with_role("inbox")[0])]
        self._only_in_copy += 2
        for _ in range(9):
            mail = self.plain_mail(self.accounts["work"], False)
            self._shared_with_copy += 1
            yield [self.copy(mail, self.accounts[key].with_role("inbox")[0])
                   for key in ("work", "copy")]

    def plain_mail(self, account: Account, outgoing: bool) -> Mail:
        lang, other = "zh", self.wording.person("zh")
        sender, to = (account.owner, other) if outgoing else (other, account.owner)
        return self.mail(sender, [to], self.wording.subject(lang),
                         self.wording.body(lang, sender.name), self.date(account), lang)

    def account(self) -> Account:
        weights = {key: weight for key, weight in ACCOUNT_WEIGHTS.items() if key in self.accounts}
        key = self.rng.choices(list(weights), list(weights.values()))[0]
        # The redundant account must stay at least three quarters a copy of the work account.
        if key == "copy" and self._shared_with_copy < 3 * (self._only_in_copy + 1):
            key = "work"
        self._only_in_copy += key == "copy"
        return self.accounts[key]

    def date(self, account: Account) -> int:
        last = LOCAL_STORE_ENDS if account.scheme == "local" else LAST_DAY
        # More mail in later years.
        return FIRST_DAY + int((last - FIRST_DAY) * self.rng.random() ** 0.75)

    def language(self, account: Account) -> str:
        return self.rng.choices(*LANGUAGES[account.key])[0]

    def mail(self, sender: Person | None, to: list[Person], subject: str, text: str, date: int,
             lang: str, **more: object) -> Mail:
        self._made += 1
        token = f"{self.rng.getrandbits(64):016X}{self._made:X}"
        domain = sender.address.rpartition("@")[2] if sender else "unknown.example"
        mail = Mail(f"{self._id_local_part(token)}@{domain}", sender, to, subject, date, lang,
                    self.wording.charset(lang), text, token,
                    zone=3600 * self.rng.choice(ZONES[lang]),
                    received_after=self.rng.choice((1, 2, 4, 9, 61, 1900)), **more)
        self._vary_dates(mail)
        return mail

    def _id_local_part(self, token: str) -> str:
        return self.rng.choice((token, token.lower(), f"CA+{token[:10]}_x{token[10:]}",
                                f"tencent_{token}", f"{token[:8]}-{token[8:12]}-{token[12:]}"))

    def _vary_dates(self, mail: Mail) -> None:
        luck = self.rng.random()
        if luck < 0.05:
            mail.display_date = self.rng.choice((0, None))
        if luck < 0.015:
            mail.date_received = self.rng.choice((0, None))

    # Placing

    def copies(self, mail: Mail, account: Account, outgoing: bool = False,
               role: str | None = None) -> Family:
        family = [self.copy(mail, self.first_place(account, outgoing, role))]
        if role not in ("trash", "junk"):
            family += [self.copy(mail, place)
                       for place in self.other_places(mail, account, outgoing)
                       if place is not family[0].mailbox]
        return family

    def first_place(self, account: Account, outgoing: bool, role: str | None) -> Mailbox:
        if outgoing:
            role = "sent"
        elif role is None:
            role = self.rng.choices(("inbox", "folder", "archive", "trash"), (52, 30, 13, 5))[0]
        places = account.with_role(role) or account.with_role("archive", "folder")
        return self.rng.choice(places)

    def other_places(self, mail: Mail, account: Account, outgoing: bool) -> Iterator[Mailbox]:
        rng = self.rng
        if account.key == "work" and not outgoing and rng.random() < 0.24:
            self._shared_with_copy += 1
            yield rng.choice(self.accounts["copy"].with_role("inbox", "archive"))
        if account.key == "home" and rng.random() < 0.3:
            yield rng.choice(account.with_role("archive"))
        if account.key == "work" and mail.date < LOCAL_STORE_ENDS and rng.random() < 0.04:
            yield rng.choice(self.accounts["local"].with_role("archive"))
        if account.key in ("work", "exchange") and rng.random() < 0.03:
            yield rng.choice(account.with_role("folder"))

    def copy(self, mail: Mail, mailbox: Mailbox) -> Copy:
        copy = Copy(mail, mailbox, headers=self.delivery_headers(mail, mailbox))
        luck = self.rng.random()
        if luck < self.server_only:
            copy.file = "none"
        elif mail.attachments and luck < self.server_only + 0.04:
            copy.file = "partial"
        elif luck > 0.7:
            copy.file = "narrow"
        if copy.file == "partial" or copy.file != "none" and self.rng.random() < 0.45:
            copy.stored = stored_files(mail.attachments)
        return copy

    def delivery_headers(self, mail: Mail, mailbox: Mailbox) -> tuple[tuple[str, str], ...]:
        """Fields that a server adds, so that no two copies of a message begin alike."""
        if mailbox.role == "sent":
            return (("X-Uniform-Type-Identifier", "com.apple.mail-draft"),)
        host = f"mx{self.rng.randrange(90)}.{mailbox.account.owner.address.rpartition('@')[2]}"
        return (("Delivered-To", mailbox.account.owner.address),
                ("Received", f"from relay.example by {host} with ESMTPS id {mail.token[:12]}"))

    # Scenes

    def thread(self, account: Account) -> Iterator[Family]:
        rng, wording = self.rng, self.wording
        lang, me = self.language(account), account.owner
        other, cc = wording.person(lang), wording.colleagues(lang, 3)
        subject, date, prefix = wording.subject(lang), self.date(account), ""
        references: tuple[str, ...] = ()
        text = ""
        outgoing = account.scheme != "local" and rng.random() < 0.4
        for _ in range(rng.randint(2, 7)):
            sender, to = (me, other) if outgoing else (other, me)
            body = wording.body(lang, sender.name)
            if text and rng.random() < 0.7:
                body += wording.quoted(lang, text, to.name or to.address, date)
            mail = self.mail(sender, [to], subject, body, date, lang, cc=cc, prefix=prefix,
                             references=references, headers=self.mailer())
            self.decorate(mail, 0.12)
            yield self.copies(mail, account, outgoing)
            references += (mail.message_id,)
            text, prefix = body, prefix or rng.choice(words.REPLY_PREFIXES[lang])
            date += int(rng.expovariate(1 / 70_000)) + 60
            outgoing = not outgoing and account.scheme != "local"

    def letter(self, account: Account) -> Iterator[Family]:
        rng, wording = self.rng, self.wording
        lang, me = self.language(account), account.owner
        outgoing = account.scheme != "local" and rng.random() < 0.25
        other = wording.person(lang)
        sender, to = (me, other) if outgoing else (other, me)
        mail = self.mail(sender, [to, *wording.colleagues(lang, 1)], wording.subject(lang),
                         wording.body(lang, sender.name), self.date(account), lang,
                         cc=wording.colleagues(lang, 2), headers=self.mailer())
        if outgoing and rng.random() < 0.2:
            mail.bcc = [wording.person(lang)]
        self.decorate(mail, 0.35)
        yield self.copies(mail, account, outgoing)

    def decorate(self, mail: Mail, attachment_share: float) -> None:
        """Gives a mail an HTML twin, attachments and a signature picture, each by chance."""
        rng, wording = self.rng, self.wording
        if rng.random() < attachment_share:
            count = rng.choice((1, 1, 2, 3))
            mail.attachments = [wording.attachment(mail.lang) for _ in range(count)]
        image = wording.signature_image() if rng.random() < 0.12 else None
        if image:
            mail.attachments.append(image)
        if image or rng.random() < 0.4:
            mail.html = wording.html_of(mail.text, content_id(image, mail.token) if image else "")
        elif mail.lang == "en":
            mail.flowed = rng.random() < 0.5

    def mailer(self) -> tuple[tuple[str, str], ...]:
        return (("X-Mailer", self.rng.choice(MAILERS)),)

    def newsletter(self, account: Account) -> Iterator[Family]:
        name, address, lang = self.rng.choice(words.LETTER_SENDERS)
        text = self.wording.body(lang, name, sentences=6)
        domain = address.rpartition("@")[2]
        headers = (("List-Id", f"<letter.{domain}>"),
                   ("List-Unsubscribe", f"<mailto:leave@{domain}>"), ("Precedence", "bulk"))
        mail = self.mail(Person(name, address), [account.owner],
                         self.wording.subject(lang, words.LETTERS), text, self.date(account), lang,
                         headers=headers, html=self.wording.html_of(text))
        yield self.copies(mail, account)

    def notice(self, account: Account) -> Iterator[Family]:
        name, address, lang = self.rng.choice(words.NOTICE_SENDERS)
        to = account.owner if self.rng.random() < 0.5 else Person("", account.owner.address)
        mail = self.mail(Person(name, address), [to], self.wording.subject(lang, words.NOTICES),
                         self.wording.body(lang, name, sentences=2), self.date(account), lang)
        if self.rng.random() < 0.3:
            data = self.wording.blob("pdf", 18000, self.rng.randrange(6))
            mail.attachments = [Attachment(f"invoice-{self.rng.randrange(99999)}.pdf", data,
                                           "application/pdf")]
        yield self.copies(mail, account)

    def forward(self, account: Account) -> Iterator[Family]:
        lang, wording = self.language(account), self.wording
        date = self.date(account)
        inner = self.mail(wording.person(lang), [wording.person(lang)], wording.subject(lang),
                          wording.body(lang, ""), date - 90_000, lang)
        self.decorate(inner, 0.3)
        mail = self.mail(wording.person(lang), [account.owner], inner.subject,
                         wording.body(lang, "", sentences=1), date, lang,
                         prefix=words.FORWARD_PREFIXES[lang], forwarded=inner)
        yield self.copies(mail, account)

    def spam(self, account: Account) -> Iterator[Family]:
        name, address, lang = self.rng.choice(words.SPAMMERS)
        sender = Person(name, address.format(n=self.rng.randrange(999)))
        mail = self.mail(sender, [account.owner], self.wording.subject(lang, words.SPAM),
                         self.wording.body(lang, name), self.date(account), lang)
        yield self.copies(mail, account, role="junk")


def stored_files(attachments: list[Attachment]) -> list[tuple[str, str, bytes]]:
    return [(f"1.{i + 2}" if item.inline else str(i + 2), item.name, item.data)
            for i, item in enumerate(attachments)]
