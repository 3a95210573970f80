"""Messages inside other things: winmail.dat, RTF, opaque S/MIME, OpenPGP in place, fragments, invitations."""

import base64
import struct
import unittest
import zlib

from mail_kit import attached, attachments, body, mail, multipart, part

from corvane_mail.bodies.body import ENCRYPTED_NOTICE
from corvane_mail.packed.rtf_text import decompressed

PDF = bytes(range(256)) * 3
RTF = (rb"{\rtf1\ansi\ansicpg936{\fonttbl{\f0\fnil\fcharset134 \'cb\'ce\'cc\'e5;}{\f1 Arial;}}{\*\generator x;}\f0 "
       rb"\'c4\'e3\'ba\'c3\par{\b two} \u20013?\{x\}\tab end}")
RTF_TEXT = "你好\ntwo 中{x}\tend"
WRAPPED_HTML = (rb"{\rtf1\ansi\ansicpg936\fromhtml1 {\*\htmltag64 <p>}\htmlrtf {\htmlrtf0 \'c4\'e3 & {\*\htmltag4 <b>}"
                rb"x{\*\htmltag12 </b>}\htmlrtf }\htmlrtf0 {\*\htmltag72 </p>}{\*\htmltag64 <p>}next}")


def attribute(level, tag, data):
    return struct.pack("<BII", level, tag, len(data)) + data + struct.pack("<H", sum(data) & 0xFFFF)


def text_property(number, text):
    data = text.encode("utf-16-le") + b"\0\0"
    return binary_property(number, data, 0x1F)


def binary_property(number, data, kind=0x102):
    return struct.pack("<HHII", kind, number, 1, len(data)) + data + b"\0" * (-len(data) % 4)


def properties(*values):
    named = struct.pack("<HH16sII", 3, 0x8001, b"g" * 16, 1, 6) + "ab\0".encode("utf-16-le") + b"\0\0" + struct.pack("<I", 7)
    return struct.pack("<I", len(values) + 2) + struct.pack("<HHI", 3, 0x0E07, 1) + named + b"".join(values)


def compressed(rtf):
    """LZFu: groups of eight literals; behind the last one a reference to the place of writing, which ends the text."""
    whole = len(rtf) // 8 * 8
    out = b"".join(b"\0" + rtf[at:at + 8] for at in range(0, whole, 8))
    out += bytes((1 << len(rtf) - whole,)) + rtf[whole:] + struct.pack(">H", (207 + len(rtf)) % 4096 << 4)
    return struct.pack("<II4sI", len(out) + 12, len(rtf), b"LZFu", 0) + out


def tnef(*attributes):
    page = attribute(1, 0x00069007, struct.pack("<II", 936, 0))
    return b"\x78\x9f\x3e\x22\x01\0" + page + b"".join(attributes)


def packed_file(name, data):
    return attribute(2, 0x00069002, b"\0" * 14) + attribute(2, 0x00018010, b"SHORT~1.PDF\0") + attribute(2, 0x0006800F, data) + \
        attribute(2, 0x00069005, properties(text_property(0x3707, name)))


def winmail(data):
    return attached(b"Content-Disposition: attachment; filename=\"winmail.dat\"", data, "application/ms-tnef")


def der(tag, content):
    size = len(content)
    head = bytes((size,)) if size < 128 else b"\x82" + size.to_bytes(2, "big")
    return bytes((tag,)) + head + content


def cms(number, content):
    oid = b"\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07" + bytes((number,))
    return der(0x30, oid + der(0xA0, content))


def smime(data):
    return attached(b"Content-Disposition: attachment; filename=smime.p7m", data, "application/pkcs7-mime")


class Packed(unittest.TestCase):
    def test_winmail_gives_its_files_and_where_nothing_else_speaks_its_text(self):
        files = packed_file("合同（终稿）.pdf", PDF), packed_file("b.bin", b"")
        for text, expected in ((attribute(1, 0x0002800C, "您好".encode("gbk") + b"\0"), "您好"),
                               (attribute(1, 0x00069003, properties(text_property(0x1000, "您好\r\n吗"))), "您好\n吗"),
                               (attribute(1, 0x00069003, properties(binary_property(0x1009, compressed(RTF)))), RTF_TEXT),
                               (attribute(1, 0x00069003, properties(binary_property(0x1013, "<p>您好</p><p>吗".encode("gbk")))), "您好\n\n吗")):
            message = mail(multipart("mixed", part(" "), winmail(tnef(text, *files))))
            self.assertEqual(body(message), expected)
            found = [(each.name, each.data()) for each in attachments(message)]
            self.assertEqual(found[1:], [("合同（终稿）.pdf", PDF), ("b.bin", b"")])
            self.assertEqual(found[0][0], "winmail.dat")
            self.assertEqual(body(mail(multipart("mixed", part("正文"), winmail(tnef(text))))), "正文")

    def test_compressed_rtf_may_refer_to_what_it_is_just_writing(self):
        data = struct.pack("<II4sI", 0, 18, b"LZFu", 0) + b"\x06a" + struct.pack(">HH", 207 << 4 | 15, (207 + 18) << 4)
        self.assertEqual(decompressed(data), b"a" * 18)

    def test_a_message_inside_winmail_gives_its_files(self):
        inner = bytes.fromhex("0703020000000000c000000000000046") + tnef(packed_file("in.pdf", PDF))
        outer = attribute(2, 0x00069002, b"\0" * 14) + attribute(2, 0x00069005, properties(binary_property(0x3701, inner, 0x0D)))
        self.assertEqual([each.name for each in attachments(mail(winmail(tnef(outer))))], ["winmail.dat", "in.pdf"])

    def test_rtf_that_stands_alone(self):
        self.assertEqual(body(mail(part(RTF, "text/rtf"))), RTF_TEXT)
        self.assertEqual(body(mail(part(WRAPPED_HTML, "text/rtf"))), "你 & x\n\nnext")
        self.assertEqual(body(mail(part(rb"{\rtf1 a\u1?\u-3855?QUOTE\u55357?\u56832?b\u55357?}", "text/rtf"))), "aQUOTE😀b\ufffd")
        self.assertEqual(body(mail(multipart("alternative", part("plain"), part(RTF, "text/rtf")))), "plain")

    def test_opaque_signed_mail_is_opened_and_encrypted_mail_is_told(self):
        inner = multipart("mixed", part("签名的正文"), attached(b"Content-Disposition: attachment; filename=in.pdf", PDF))
        signed = cms(2, der(0x30, b"\x02\x01\x01\x31\x00" + cms(1, der(0x04, inner))))
        packed = der(0x30, b"\x06\x0b\x2a\x86\x48\x86\xf7\x0d\x01\x09\x10\x01\x09" + der(0xA0, cms(1, der(0x04, zlib.compress(inner)))))
        for data in (signed, packed, cms(2, der(0x30, cms(1, b"\x24\x80" + der(0x04, inner[:300]) + der(0x04, inner[300:]) + b"\0\0")))):
            self.assertEqual(body(mail(smime(data))), "签名的正文")
            self.assertEqual([(each.name, each.data() == PDF) for each in attachments(mail(smime(data)))],
                             [("smime.p7m", False), ("in.pdf", True)])
        self.assertEqual(body(mail(smime(cms(3, der(0x30, b"\x02\x01\x02"))))), ENCRYPTED_NOTICE)
        pgp = multipart("encrypted", part("Version: 1", "application/pgp-encrypted"), part("-----BEGIN", "application/octet-stream"))
        self.assertEqual(body(mail(pgp)), ENCRYPTED_NOTICE)

    def test_text_signed_in_place_loses_its_armor_only_where_it_is_whole(self):
        armored = "前言\n-----BEGIN PGP SIGNED MESSAGE-----\nHash: SHA256\n\n正文\n- -- \n名\n-----BEGIN PGP SIGNATURE-----\n\niQ\n-----END PGP SIGNATURE-----\n后"
        self.assertEqual(body(mail(part(armored))), "前言\n正文\n--\n名\n后")
        for broken in (armored.replace("-----END", "-----XXX"), armored.replace("\n\n正文", "\n正文")):
            self.assertIn("-----BEGIN PGP SIGNED", body(mail(part(broken))))

    def test_the_first_fragment_is_read_and_the_others_are_no_noise(self):
        for number, content, expected in ((1, "Subject: 大\n\n正文", "主题：大\n\n正文"), (2, "后半", "后半"),
                                          (2, base64.encodebytes(PDF).decode(), "")):
            head = "Content-Type: message/partial; id=x; number=%d; total=2\n\n" % number
            self.assertEqual(body(mail((head + content).encode())), expected)

    def test_what_came_attached_speaks_where_nothing_else_does(self):
        event = "BEGIN:VCALENDAR\nMETHOD:CANCEL\nBEGIN:VEVENT\nBEGIN:VALARM\nDESCRIPTION:alarm\nEND:VALARM\nEND:VEVENT\n" \
                "BEGIN:VEVENT\nSUMMARY;LANGUAGE=\"a:b\":评审\nDTSTART;VALUE=DATE:20240102\nORGANIZER;CN=\"李: 四\":mailto:l@example.com\nEND:VEVENT\n"
        invitation = part(event, "application/octet-stream", extra="Content-Disposition: attachment; filename=\"invite.ics\"\n")
        nameless = part("正文", extra="Content-Disposition: attachment\n")
        named = part("附件内容", extra="Content-Disposition: attachment; filename=a.txt\n")
        for parts, expected in (((part(" "), invitation), "日程已取消\n\n日程：评审\n时间：2024-01-02\n组织者：李: 四"),
                                ((part(""), nameless), "正文"), ((part(""), named), ""), ((part("正文"), invitation), "正文")):
            self.assertEqual(body(mail(multipart("mixed", *parts))), expected)

    def test_files_sent_as_text_are_no_text(self):
        for data in (b"\x89PNG\r\n\x1a\n" + PDF, b"%PDF-1.4\n" + PDF, b"PK\x03\x04" + PDF):
            message = mail(multipart("mixed", part("正文"), part(data, encoding="base64", extra="Content-Description: scan.bin\n")))
            self.assertEqual(body(message), "正文")
            message = mail(part(data, charset="", encoding="base64").replace(b"text/plain", b"text/plain; name=a.bin"))
            self.assertEqual((body(message), [(each.name, each.data()) for each in attachments(message)]), ("", [("a.bin", data)]))


if __name__ == "__main__":
    unittest.main()
