"""Odd mail is read as a careful reader would read it."""

import unittest

import odd_mail

from corvane_mail.attachments.listing import attachments_of
from corvane_mail.bodies.body import body_text
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


if __name__ == "__main__":
    unittest.main()
