"""Hostile messages: bounded in time, no loss of neighbours, nothing escapes as an exception."""

import base64
import time
import unittest
from unittest import mock

from mail_kit import attachments, body, multipart, part

from corvane_mail.bodies.body import CAP_NOTICE
from corvane_mail.limits import CLOCK, Failure

SIZE = 1 << 20


def fill(piece, size=SIZE):
    return (piece * (size // len(piece) + 1))[:size]


def html(markup):
    return part(markup, "text/html")


def typed(fields, data):
    return fields + b"\n\n" + data


def winmail(attributes):
    return part(b"\x78\x9f\x3e\x22\0\0" + attributes, "application/ms-tnef")


def nested(count, step):
    entity = part("innermost")
    for number in range(count):
        entity = step(number, entity)
    return entity


HOSTILE = {
    "half a million fields": fill(b"X: y\n", 2 * SIZE) + b"\n\nx", "fields without end": fill(b"Subject: y\n"), "junk lines": fill(b"junk line\n"),
    "one endless fold": b"Subject: " + fill(b"a\n ") + b"\n\nx", "blank folds": b"Subject: " + fill(b"\n ") + b"\n\nx",
    "carriage returns": b"A: b\n\n" + fill(b"\r"), "line of blanks": b"A: b\n" + fill(b" ") + b"\n\nx",
    "parameters": b"Content-Type: text/plain" + fill(b"; a=\"x\"y") + b"\n\nx", "open quotes": b"Content-Type: text/plain" + fill(b";a=\"") + b"\n\nx",
    "nested multiparts": b"".join(b"Content-Type: multipart/mixed; boundary=b%d\n\n--b%d\n" % (i, i) for i in range(20000)),
    "nested messages": fill(b"Content-Type: message/rfc822\n\n"), "one boundary for all": fill(b"Content-Type: multipart/mixed; boundary=o\n\n--o\n"),
    "nested and encoded": nested(30, lambda _, entity: part(entity, "message/rfc822", encoding="base64")),
    "signed in signed": nested(200, lambda _, entity: part(b"\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07\x01\xa0\x80\x24\x80\x04\x83" +
                                                           len(entity).to_bytes(3, "big") + entity, "application/pkcs7-mime")),
    "many parts": typed(b"Content-Type: multipart/mixed; boundary=o", fill(b"--o\n\nx\n")),
    "many messages": typed(b"Content-Type: multipart/digest; boundary=o", fill(b"--o\n\nSubject: x\n\ny\n")),
    "boundaries far away": typed(b"Content-Type: multipart/mixed; boundary=o", fill(b"--o\nContent-Type: multipart/mixed; boundary=z\n\n") + b"\n--z\n"),
    "boundaries missing": typed(b"Content-Type: multipart/mixed; boundary=o", fill(b"--o\nContent-Type: multipart/mixed\n\n--\n")),
    "ends without number": typed(b"Content-Type: multipart/mixed; boundary=o", b"--o\n\nx\n" + fill(b"--o--\n")),
    "dashes inside a hundred multiparts": b"".join(b"Content-Type: multipart/mixed; boundary=b%d\n\n--b%d\n" % (i, i) for i in range(99)) + fill(b"\n--x"),
    "less-than signs": html(fill(b"<")), "open tags": html(fill(b"<a \"")), "open comments": html(fill(b"<!-- ")), "blocks": html(fill(b"<div>")),
    "hidden blocks": html(fill(b"<div style=\"display:none\">x")), "tiny blocks": html(fill(b"<div style=\"font-size:0\">")),
    "hidden elements of all names": html(b"".join(b"<x%d style=display:none>" % i for i in range(30000))), "tables": html(fill(b"<table><tr><td>")),
    "lists": html(fill(b"<ul><li>")), "quotes": html(fill(b"<blockquote type=cite>")), "links": html(fill(b"<a href=http://x></a>")),
    "styles without end": html(fill(b"<style>")), "preformatted": html(fill(b"<pre> \n")), "kept lines": html(fill(b"<span style=\"white-space:pre\">")),
    "ampersands": html(fill(b"<b>&")), "long entities": html(b"<b>" + fill(b"&abcdefghijklmnopqrstuvwxyz")), "surrogates": html(b"<b>" + fill(b"&#xD83D;")),
    "blanks": html(b"<b>" + fill(b" ")), "attribute of attributes": html(b"<div " + fill(b"class=") + b">x"), "endless style": html(b"<p style=\"" + fill(b"height:0 ") + b"\">x"),
    "combining marks": part(("a" + "\u0316\u0301" * (SIZE // 4)).encode()), "jamo": part(("\u1100\u1161" * (SIZE // 6)).encode()),
    "padding": part(fill(b"=A"), encoding="8bit").replace(b"8bit", b"base64"), "equals signs": part(fill(b"=")).replace(b"8bit", b"quoted-printable"),
    "soft blanks": part(b"=" + fill(b" ")).replace(b"8bit", b"quoted-printable"), "uuencoded starts": b"\n" + fill(b"begin 644 x\n#0V%T\n") + b"\nend\n",
    "uuencoded heads": b"\n" + fill(b"begin 644 x\n") + b"\nend\n", "flowed": typed(b"Content-Type: text/plain; format=flowed", fill(b"> a \n")),
    "commands": part(fill(b"<param>"), "text/enriched"), "events": part(fill(b"BEGIN:VEVENT\nSUMMARY:x\n"), "text/calendar"),
    "encoded words": typed(b"Content-Type: message/rfc822", b"Subject: " + fill(b"=?a?q? ") + b"\n\nx"),
    "bad bytes": part(fill(b"\xff"), charset="gb2312"), "bad bytes of UTF-8": part(fill(b"a\xff"), charset="utf-8"), "zeros": fill(b"\0"),
    "rules of style": html(b"<style>" + fill(b".a{display:none}") + b"</style><p class=a>"), "comments of style": html(
        b"<style>" + fill(b"/* ") + b".a{display:none}</style>"), "blocks of style": html(b"<style>" + fill(b"{display:none") + b"}</style>"),
    "clear signed": part(fill(b"-----BEGIN PGP SIGNED MESSAGE-----\n\nx\n") + b"\n-----BEGIN PGP SIGNATURE-----\n-----END PGP SIGNATURE-----\n"),
    "signed headers": part(fill(b"-----BEGIN PGP SIGNED MESSAGE-----\nA: b\n")), "yEnc heads": part(fill(b"=ybegin name=x\n") + b"=yend\n"),
    "braces of RTF": part(fill(b"{"), "text/rtf"), "words of RTF": part(fill(b"\\par\\u20013 \\'d6"), "text/rtf"),
    "winmail files": winmail(fill(b"\2\2\x90\6\0\0\0\0\0\0\0")),
    "winmail properties": winmail(b"\1\3\x90\6\0" + SIZE.to_bytes(4, "little") + b"\xff\xff\0\0" + fill(b"\x1e\x10\0\x10\xff\xff\0\0\0\0\0\0")),
    "compressed RTF": winmail(b"\1\3\x90\6\0" + SIZE.to_bytes(4, "little") + b"\1\0\0\0\x02\x01\x09\x10\1\0\0\0" + SIZE.to_bytes(4, "little") +
                              b"\0\0\0\0\xff\xff\xff\x7fLZFu\0\0\0\0" + fill(b"\xff" + b"\x00\x1f" * 8)),
    "event parameters": part(b"BEGIN:VEVENT\nX" + fill(b";A=b"), "text/calendar"), "event folds": part(b"BEGIN:VEVENT\nX:" + fill(b"\n "), "text/calendar"),
    "HZ": part(fill(b"~{"), charset="hz-gb-2312"), "HZ runs": part(b"~{" + fill(b"!!!"), charset=""), "UTF-7": part(fill(b"+A"), charset="utf-7"),
    "lost escapes": part(fill(b"$B"), charset="iso-2022-jp"), "sets mixed": part(fill("é".encode() + b"\xe9"), charset=""),
    "all base64": part(fill(b"A" * 76 + b"\n")), "escapes of no sort": part(fill(b"=E4=BD=A0 ")),
    "pieces of DER": part(b"\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07\x01\xa0\x80" + fill(b"\x04\x00"), "application/pkcs7-mime"),
    "escapes": part(fill(b"\x1b$B"), charset="iso-2022-jp"), "open names": typed(b"Content-Type: application/pdf; name*0=\"" + fill(b"%"), b"x"),
}


class Time(unittest.TestCase):
    def test_every_hostile_message_ends_soon(self):
        # The limit is far above what linear work takes, and far below what squares of these sizes take.
        for name, message in HOSTILE.items():
            with self.subTest(name):
                start = time.process_time()
                body(message)
                [each.size(False, 0) for each in attachments(message)]
                self.assertLess(time.process_time() - start, 8)

    def test_the_clock_ends_what_takes_too_long(self):
        CLOCK.use_signals()

        def endless():
            while True:
                pass

        def swallowing():
            try:
                endless()
            except Exception:
                return "swallowed"
        for work in (endless, swallowing):
            with self.assertRaisesRegex(Failure, "超时"):
                CLOCK.run(0.05, work)
        self.assertEqual(CLOCK.run(5, lambda: "next"), "next")

    def test_loops_ask_the_clock_where_no_signal_comes(self):
        with mock.patch.object(CLOCK, "set_timer", lambda seconds: None):
            for message in (HOSTILE["many parts"], HOSTILE["tables"]):
                with self.assertRaisesRegex(Failure, "超时"):
                    CLOCK.run(0.0, body, message)


class Limits(unittest.TestCase):
    def test_depth_and_parts_are_capped_and_it_is_said(self):
        deep = nested(150, lambda number, entity: multipart("mixed", part("level %d" % number), entity, boundary="b%d" % number))
        text = body(deep)
        self.assertIn("level 149", text)
        self.assertIn("level 60", text)
        self.assertNotIn("innermost", text)
        self.assertTrue(text.endswith(CAP_NOTICE))
        self.assertTrue(body(HOSTILE["many parts"]).endswith(CAP_NOTICE))
        self.assertNotIn(CAP_NOTICE, body(multipart("mixed", *[part("x")] * 500)))

    def test_texts_can_always_be_sent(self):
        for message in (part("&#xD83D;&#55357;", "text/html"), part("+2D3-", charset="utf-7"),
                        part(base64.b64encode(b"\xff\xfe\x3d\xd8")).replace(b"8bit", b"base64"), part(b"\xed\xa0\xbd\xed\xb8\x80")):
            body(message).encode("utf-8")


if __name__ == "__main__":
    unittest.main()
