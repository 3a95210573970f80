"""Random people, subjects, bodies and attachments, all drawn from one generator."""

from __future__ import annotations

import base64
import html
import random
import re
import time

from . import vocabulary as words
from .model import UTF8, Attachment, Charset, Person

MIME_OF = {
    "pdf": "application/pdf", "jpg": "image/jpeg", "png": "image/png", "zip": "application/zip",
    "docx": "application/vnd.openxmlformats-officedocument.wordprocessingml.document",
    "xlsx": "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet",
    "pptx": "application/vnd.openxmlformats-officedocument.presentationml.presentation",
    "txt": "text/plain", "csv": "text/csv", "key": "application/x-iwork-keynote-sffkey",
}
MAGIC = {
    "pdf": b"%PDF-1.4\n", "jpg": b"\xff\xd8\xff\xe0\x00\x10JFIF\x00", "png": b"\x89PNG\r\n\x1a\n",
    "txt": b"", "csv": b"",
}
FILE_KINDS = ["pdf"] * 5 + ["docx"] * 3 + ["xlsx"] * 3 + ["zip", "pptx", "txt", "csv", "key"]
FILE_SIZES = [900] * 20 + [4200] * 20 + [18000] * 9 + [60000]


class Wording:
    def __init__(self, rng: random.Random, people_count: int) -> None:
        self.rng = rng
        self.people = {lang: self._people(lang, people_count) for lang in ("zh", "tw", "ja", "en")}
        self._charsets = {
            lang: ([Charset(*row[1:]) for row in rows], [row[0] for row in rows])
            for lang, rows in words.CHARSETS.items()
        }
        self._blobs: dict[tuple[str, int, int], bytes] = {}

    def _people(self, lang: str, count: int) -> list[Person]:
        shares = {"zh": 0.5, "en": 0.35, "tw": 0.1, "ja": 0.05}
        return [self._person(lang, n) for n in range(max(6, int(count * shares[lang])))]

    def _person(self, lang: str, n: int) -> Person:
        pick = self.rng.choice
        if lang == "zh":
            surname, given = pick(words.ZH_SURNAMES), pick(words.ZH_GIVEN)
            name, local = surname[0] + given[0], f"{surname[1]}.{given[1]}"
        elif lang == "en":
            first, last = pick(words.EN_FIRST), pick(words.EN_LAST)
            name, local = f"{first} {last}", f"{first}.{last}".lower().replace("'", "")
        else:
            name, local = pick(words.TW_NAMES if lang == "tw" else words.JA_NAMES)
        if n >= 20:
            local += str(n)
        address = f"{local}@{pick(words.DOMAINS[lang])}"
        return Person("" if self.rng.random() < 0.15 else name, address)

    def person(self, lang: str) -> Person:
        # Some people write far more than others.
        people = self.people[lang]
        return people[int(len(people) * self.rng.random() ** 2)]

    def colleagues(self, lang: str, most: int) -> list[Person]:
        return list({self.person(lang): None for _ in range(self.rng.randint(0, most))})

    def charset(self, lang: str) -> Charset:
        choices, weights = self._charsets[lang]
        return self.rng.choices(choices, weights)[0]

    def fillers(self, lang: str, me: str = "") -> dict[str, str]:
        pick = self.rng.choice
        values = {slot: pick(choices) for slot, choices in words.FILLERS[lang].items()}
        values["num"] = str(self.rng.randrange(2, 99999))
        values["few"] = str(self.rng.randrange(2, 60))
        values["amount"] = f"{self.rng.randrange(10, 980000) / 10:.2f}"
        values["me"] = me
        return values

    def subject(self, lang: str, kind: dict[str, list[str]] = words.SUBJECTS) -> str:
        return self.rng.choice(kind[lang]).format_map(self.fillers(lang))

    def body(self, lang: str, me: str, sentences: int | None = None) -> str:
        rng = self.rng
        paragraphs = [rng.choice(words.GREETINGS[lang])]
        for _ in range(rng.randint(1, 4)):
            values = self.fillers(lang, me)
            chosen = rng.choices(words.SENTENCES[lang], k=sentences or rng.randint(1, 4))
            joiner = " " if lang == "en" else ""
            paragraphs.append(joiner.join(chosen).format_map(values))
        paragraphs.append(rng.choice(words.CLOSINGS[lang]).format_map({"me": me}))
        return "\n\n".join(paragraphs).format_map(self.fillers(lang, me)) + "\n"

    @staticmethod
    def quoted(lang: str, text: str, who: str, date: int) -> str:
        day = time.strftime("%Y-%m-%d %H:%M", time.gmtime(date))
        head = words.QUOTE_LINES[lang].format(date=day, who=who)
        lines = "\n".join("> " + line for line in text.split("\n")[:40])
        return f"\n{head}\n{lines}\n"

    def file_name(self, lang: str, kind: str) -> str:
        stem = self.rng.choice(words.FILE_STEMS[lang]).format_map(self.fillers(lang))
        return f"{stem}.{kind}"

    def blob(self, kind: str, size: int, variant: int = 0) -> bytes:
        key = (kind, size, variant)
        if key not in self._blobs:
            self._blobs[key] = self._make_blob(kind, size, variant)
        return self._blobs[key]

    @staticmethod
    def _make_blob(kind: str, size: int, variant: int) -> bytes:
        # Its own generator: a blob is the same whichever mail asks for it first.
        noise = random.Random(f"{kind}/{size}/{variant}").randbytes(size)
        if kind in ("txt", "csv"):
            noise = base64.encodebytes(noise)
        return (MAGIC.get(kind, b"PK\x03\x04\x14\x00\x06\x00") + noise)[:size]

    def attachment(self, lang: str) -> Attachment:
        kind = self.rng.choice(FILE_KINDS)
        data = self.blob(kind, self.rng.choice(FILE_SIZES), self.rng.randrange(6))
        style = self.rng.choice(("rfc2231", "rfc2047", "rfc2231", "raw", "continued"))
        return Attachment(self.file_name(lang, kind), data, MIME_OF[kind], style)

    def signature_image(self) -> Attachment:
        name = self.rng.choice(("image001.jpg", "image002.png", "logo.jpg"))
        kind = name[-3:]
        return Attachment(name, self.blob(kind, 3100), MIME_OF[kind], "quoted", inline=True)

    @staticmethod
    def html_of(text: str, image_cid: str = "") -> str:
        style = "body { font: 10pt sans-serif; } p { margin: 0 0 8px; }"
        blocks = html.escape(text.strip()).replace("\n\n", "</p>\n<p>")
        inner = "<p>" + re.sub(r"(?<!</p>)\n(?!<p>)", "<br>\n", blocks) + "</p>"
        if image_cid:
            inner += f'\n<img src="cid:{image_cid}" alt="">'
        return f"<html>\n<head><style>{style}</style></head>\n<body>\n{inner}\n</body>\n</html>\n"


def fitting(charset: Charset, text: str) -> Charset:
    """The charset, or UTF-8 where the text has characters that it lacks."""
    try:
        text.encode(charset.codec)
    except UnicodeEncodeError:
        return UTF8._replace(transfer="quoted-printable") if text.isascii() else UTF8
    return charset
