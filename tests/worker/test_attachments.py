"""Names, sizes and bytes of attachments."""

import unittest

from mail_kit import attached, attachments, mail, multipart, part

from corvane_mail.attachments.search import find_attachment
from corvane_mail.attachments.listing import attachments_of
from corvane_mail.bodies.body import body_text
from corvane_mail.parts.structure import Scanner

PDF = bytes(range(256)) * 5


def listed(*parts):
    return [(each.name, each.kind) for each in attachments(mail(multipart("mixed", part("body"), *parts)))]


class Names(unittest.TestCase):
    def check(self, fields, expected):
        fields = fields if isinstance(fields, bytes) else fields.encode()
        self.assertEqual(listed(attached(fields)), [(expected, "application/pdf")], fields)

    def test_a_name_in_another_set_than_its_label_says(self):
        name = "季度报告 2024（终稿）.pdf"
        for label, codec in (("gb2312", "gb18030"), ("utf-8", "gb18030"), ("iso-8859-1", "utf-8")):
            data = "".join("%%%02X" % byte for byte in name.encode(codec))
            self.check("Content-Disposition: attachment; filename*=%s''%s" % (label, data), name)
        self.check("Content-Disposition: attachment; filename=" + name, name)
        both = b"Content-Type: application/pdf; name=\"\xe6\x8a\xa5.pdf\"\nContent-Disposition: attachment; filename=\"\xff\xff.pdf\"\n\nx"
        self.assertEqual(listed(both)[0][0][-4:], ".pdf")

    def test_misuse_of_the_grammar(self):
        for value, expected in (
                ("\"a;b.pdf\"", "a;b.pdf"), ("\"a \\\"b\\\".pdf\"", "a \"b\".pdf"), ("\"a \"b\" c.pdf\"", "a \"b\" c.pdf"), ("\"open.pdf", "open.pdf"),
                ("'single.pdf'", "single.pdf"), ("two words (1).pdf ; size=3", "two words (1).pdf"), ("\"a\n b.pdf\"", "a b.pdf"),
                ("\"C:\\Documents\\a.pdf\"", "a.pdf"), ("\"../../etc/passwd\"", "passwd"), ("\"/tmp/a.pdf\"", "a.pdf"),
                ("\"2024/01 a.pdf\"", "2024/01 a.pdf"), ("\"a\x01\x02b.pdf\"", "ab.pdf"), ("\"e\u0301.pdf\"", "é.pdf"),
                ("\"\u202efdp.exe\"", "fdp.exe"), ("\"=?utf-8?Q?a_b=2Epdf?=\"", "a b.pdf"), ("\"=?utf-8?Q?What?s_up.pdf?=\"", "What?s up.pdf"),
                ("\"=?x?Z?a?=.pdf\"", "=?x?Z?a?=.pdf"), ("=?utf-8?B?5oql5ZGKLnBkZg", "报告.pdf"), ("\"100%25.pdf\"", "100%25.pdf")):
            self.check("Content-Disposition: attachment; filename=" + value, expected)


class Listing(unittest.TestCase):
    def test_what_counts_as_an_attachment(self):
        forwarded = part(mail(multipart("mixed", part("x"), attached(b"Content-Disposition: attachment; filename=in.pdf"),
                                        boundary="inner")), "message/rfc822", extra="Content-Disposition: attachment\n")
        self.assertEqual([name for name, _ in listed(
            attached(b"Content-Disposition: inline; filename=a.pdf"), attached(b""), attached(b"X: y", kind="image/png"),
            attached(b"Content-ID: <logo@x>", kind="image/png"), part("t", extra="Content-Disposition: attachment; filename=t.txt\n"),
            part("t", extra="Content-Disposition: inline; filename=i.txt\n"), part("<p>x</p>", "text/html"), forwarded,
            attached(b"", kind="application/pgp-signature"), attached(b"", kind="application/ms-tnef"))],
            ["a.pdf", "附件2.pdf", "附件3.png", "t.txt", "i.txt", "s.eml", "in.pdf", "winmail.dat"])

    def test_the_body_is_not_an_attachment_for_its_name(self):
        self.assertEqual(attachments(mail(b"Content-Type: text/plain; name=\"body.txt\"\n\ntext")), [])
        self.assertEqual([each.name for each in attachments(mail(b"Content-Type: application/pdf; name=a.pdf\n\nx"))], ["a.pdf"])
        named = [part("x", kind + "; name=\"body\"", charset="") for kind in ("text/plain", "text/html")]
        self.assertEqual(attachments(mail(multipart("alternative", *named))), [])

    def test_a_text_that_is_the_whole_message_is_read_though_it_is_attached(self):
        named = part("Salutations", extra="Content-Disposition: attachment; filename=a.txt\n")
        self.assertEqual(body_text(b"\n" + mail(named))[0], "Salutations")
        self.assertEqual(body_text(b"\n" + mail(multipart("mixed", named)))[0], "")

    def test_both_halves_of_a_mac_file_are_one_attachment(self):
        halves = [attached(b"Content-Disposition: attachment; filename=\"x.doc\"", data, kind)
                  for data, kind in ((b"\0\5\x16\7", "application/applefile"), (PDF, "application/msword"))]
        found = attachments(mail(multipart("mixed", part("b"), multipart("appledouble", *halves, boundary="mac"))))
        self.assertEqual([(each.name, each.data()) for each in found], [("x.doc", PDF)])

    def test_bytes_and_sizes(self):
        crlf = b"line one\r\nline two\r\n"
        for entity, expected in (
                (attached(b"Content-Disposition: attachment; filename=a", PDF), PDF),
                (part(PDF[9:], "application/x", encoding="quoted-printable", extra="Content-Disposition: attachment; filename=a\n"), PDF[9:]),
                (part(crlf, extra="Content-Disposition: attachment; filename=a\n"), crlf),
                (part(b"\0\xff\n--b0und\n", "application/x", extra="Content-Disposition: attachment; filename=a\n"), b"\0\xff\n--b0und\n"),
                (part(b"", "application/x", extra="Content-Disposition: attachment; filename=a\n"), b"")):
            found = attachments(mail(multipart("mixed", part("b"), entity, part("after"))))
            self.assertEqual((found[0].data(), found[0].size(False, 0)), (expected, len(expected)))

    def test_uuencoded_files_and_parts_kept_elsewhere(self):
        found = attachments(b"\ntext\nbegin 644 a b.txt\n%:&5L;&\\\n`\nend\nbegin 644 c.txt\n#0V%T\n`\nend\n")
        self.assertEqual([(each.name, each.data()) for each in found], [("a b.txt", b"hello"), ("c.txt", b"Cat")])
        outline = b"Content-Type: application/pdf; name=a.pdf\nX-Apple-Content-Length: 12345\n\n"
        self.assertEqual(attachments(mail(multipart("mixed", part("b"), outline)))[0].size(False, 0), 12345)

    def test_a_file_read_in_part_gives_an_estimate(self):
        message = mail(multipart("mixed", part("b"), attached(b"Content-Disposition: attachment; filename=a", PDF * 40)))
        found = attachments_of(Scanner(b"\n" + message[:4000]).run())
        self.assertAlmostEqual(found[0].size(True, len(message)), len(PDF) * 40, delta=300)

    def test_found_by_any_form_of_its_name(self):
        found = attachments(mail(multipart("mixed", *(attached(("Content-Disposition: attachment; filename=\"%s\"" % name).encode())
                                                      for name in ("a b_c.pdf", "é .pdf", "b\\c.doc", "合同.PDF")))))
        for wanted, name in (("a b_c.pdf", "a b_c.pdf"), ("a b c.pdf", "a b_c.pdf"), ("e\u0301.pdf", "é .pdf"), ("bc.doc", "b\\c.doc"),
                             ("utf-8''%E5%90%88%E5%90%8C.pdf", "合同.PDF"), ("=?utf-8?B?5ZCI5ZCMLlBERg==?=", "合同.PDF"), ("\"合同.pdf\"", "合同.PDF")):
            self.assertEqual(find_attachment(found, wanted).name, name, wanted)
        for wanted in ("", "x.pdf", "....", "a.pdf"):
            self.assertIsNone(find_attachment(found, wanted))

    def test_a_path_that_lost_its_backslashes_means_the_file_at_its_end(self):
        names = [attached(("Content-Disposition: attachment; filename=\"%s\"" % name).encode()) for name in ("C:\\dir\\a1.xls", "b.xls")]
        found = attachments(mail(multipart("mixed", part("b"), *names)))
        self.assertEqual(find_attachment(found, "C:dira1.xls").name, "a1.xls")
        self.assertIsNone(find_attachment(found, "dira1.xls"))
        self.assertIsNone(find_attachment(found + found, "C:dira1.xls"))


if __name__ == "__main__":
    unittest.main()
