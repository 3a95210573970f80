"""On well-formed mail the scanner and the standard library's parser lead to the same text and attachments."""

import random
import unittest
from unittest import mock

from mail_kit import attached, mail, multipart, part

from corvane_mail.parts import full_parser
from corvane_mail.attachments.listing import attachments_of
from corvane_mail.bodies.body import Body, body_text
from corvane_mail.parts.full_parser import full_parse
from corvane_mail.parts.structure import Scanner

WORDS = ("会议 report 您好 price 報告書 ありがとう 안녕하세요 Grüße the of and 附件 -- --x > quoted =3D = . From "
         "begin <b> &amp; 100% ------ --b --b-- -").split()
CHARSETS = ("utf-8", "gb18030", "us-ascii", "iso-2022-jp", "big5", "iso-8859-1", "utf-16")


class Generator:
    """Grows messages from a seed: any nesting of any kind of part, no rule broken."""

    def __init__(self, seed):
        self.rng = random.Random(seed)
        self.count = 0

    def text(self, charset):
        rng = self.rng
        lines = (" ".join(rng.choice(WORDS) for _ in range(rng.randint(0, 8))) for _ in range(rng.randint(1, 12)))
        return "\n".join(lines).encode(charset, "ignore")

    def leaf(self):
        rng, charset = self.rng, self.rng.choice(CHARSETS)
        encoding = rng.choice(("base64", "quoted-printable", "8bit") if charset != "utf-16" else ("base64",))
        kind = rng.choice(("text/plain", "text/plain", "text/html", "text/enriched"))
        data = self.text(charset)
        extra = rng.choice(("", "", "Content-Disposition: inline\n", "Content-Disposition: attachment; filename=\"a%d.txt\"\n" % self.count))
        return part(data, kind, charset, encoding, extra)

    def entity(self, depth=0):
        rng = self.rng
        self.count += 1
        shape = rng.random()
        if depth > 4 or shape < 0.45:
            return self.leaf()
        if shape < 0.55:
            return attached(b"Content-Disposition: attachment; filename=f%d.bin" % self.count, rng.randbytes(rng.randint(0, 300)))
        if shape < 0.65:
            return part(mail(self.entity(depth + 1)), "message/rfc822")
        kind = rng.choice(("mixed", "alternative", "related", "signed", "digest", "report"))
        boundary = "b%d" % self.count + rng.choice(("", "=_x", " y z"))
        children = [self.entity(depth + 1) for _ in range(rng.randint(1, 4))]
        children = [mail(child) for child in children] if kind == "digest" else children
        children = [b"\n" + child for child in children] if kind == "digest" else children
        return multipart(kind, *children, boundary=boundary)

    def message(self):
        message = mail(self.entity())
        return message.replace(b"\n", b"\r\n") if self.rng.random() < 0.3 else message


class SameText(unittest.TestCase):
    def test_scanner_and_full_parser_agree(self):
        spoke = listed = 0
        for seed in range(1500):
            data = b"\n" + Generator(seed).message()
            scanner = Scanner(data)
            ours, full = scanner.run(), full_parse(data)
            text = Body(ours).text(ours)
            self.assertEqual(text, Body(full).text(full), "seed %d" % seed)
            names = [(each.name, each.data()) for each in attachments_of(ours) if not each.part.is_message]
            self.assertEqual(names, [(each.name, each.data()) for each in attachments_of(full)
                                     if not each.part.is_message], "seed %d" % seed)
            spoke, listed = spoke + bool(text.strip()), listed + len(names)
        self.assertGreater(spoke, 1000)
        self.assertGreater(listed, 500)

    def test_odd_mail_without_text_asks_the_full_parser(self):
        with mock.patch.object(full_parser, "full_parse", side_effect=full_parse) as asked:
            body_text(b"\n" + mail(multipart("mixed", part("text"))))
            asked.assert_not_called()
            body_text(b"\nContent-Type: multipart/mixed; boundary=x\n\n")
            asked.assert_called_once()


if __name__ == "__main__":
    unittest.main()
