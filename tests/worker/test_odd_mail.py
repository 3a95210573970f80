"""Odd mail is read as a careful reader would read it, and damaged mail harms nobody."""

import json
import os
import random
import re
import time
import unicodedata
import unittest

import odd_mail
import test_packed_mail

from corvane_mail.attachments.listing import attachments_of
from corvane_mail.bodies.body import body_text
from corvane_mail.json_lines import to_json
from corvane_mail.mail_file import Mail
from corvane_mail.parts.structure import Scanner


def opened(message):
    return Mail(b"\n" + message, len(message), False)


class OddMail(unittest.TestCase):
    def test_every_case_reads_as_it_was_made(self):
        count = 0
        for name, message, text, files in odd_mail.all_cases():
            count += 1
            mail = opened(message)
            self.assertEqual(body_text(mail.data)[0], text, name)
            found = {each.name: each.data() for each in attachments_of(Scanner(mail.data).run())}
            self.assertEqual({each: found.get(each) for each in files}, files, name)
        self.assertGreater(count, 900)


def damaged(rng, message):
    """The message with bytes changed, taken out, doubled, moved, or with what often does harm put in."""
    data = bytearray(message)
    for _ in range(rng.randint(1, 12)):
        at, size = rng.randrange(len(data) + 1), rng.choice((0, 1, 1, 2, 9, 120))
        piece = rng.choice((b"", b"\n", b"\r", b"\n\n", b"\0", b"=", b"=?", b"?=", b"--", b"\"", b";", b"<", b"&#", b"\xff", b"\x1b$B", b"~{", b"+",
                            b"\nContent-Type: multipart/mixed; boundary=b\n", b"\nContent-Type: message/rfc822\n\n", b"\n--b0undary--\n",
                            bytes(data[at:at + 60]) * 2, rng.randbytes(rng.randint(1, 30))))
        data[at:at + size] = piece
    return bytes(data)


class Damage(unittest.TestCase):
    # By hand: CORVANE_FUZZ_ROUNDS=100000 CORVANE_FUZZ_SEED=7 python3 -m unittest discover -s tests/worker -p test_odd_mail.py
    ROUNDS = int(os.environ.get("CORVANE_FUZZ_ROUNDS", 1500))
    SEED = int(os.environ.get("CORVANE_FUZZ_SEED", 20240101))

    def test_damage_never_raises_and_what_comes_out_can_be_sent(self):
        rng, sources = random.Random(self.SEED), [message for _, message, _, _ in odd_mail.all_cases()]
        sources += [*test_packed_mail.samples()] * (len(sources) // 30)
        for number in range(self.ROUNDS):
            message = damaged(rng, rng.choice(sources))
            start = time.process_time()
            mail = opened(message)
            text = body_text(mail.data)[0]
            names = [(each.name, each.size(False, 0)) for each in attachments_of(Scanner(mail.data).run())]
            self.assertLess(time.process_time() - start, 2, message)
            self.assertEqual(json.loads(to_json([text, names])), [text, [list(each) for each in names]])
            for each in (text, *(name for name, _ in names)):
                each.encode("utf-8")
                self.assertTrue(unicodedata.is_normalized("NFC", each), message)
                self.assertFalse(re.search("[\0-\x08\x0b-\x1f\x7f-\x9f\ufeff]", each), message)


if __name__ == "__main__":
    unittest.main()
