"""Charsets, transfer encodings and the structure of messages: what the combinations of odd_mail.py leave out."""

import base64
import unittest

from mail_kit import body, encode, mail, multipart, part

from corvane_mail.bodies.body import body_text
from corvane_mail.mail_file import message_bytes

SIMPLIFIED = "您好，附件是上周的会议纪要，请查收。镕喆也会参加，如有问题请联系我们。"
KOREAN = "안녕하세요. 회의 자료를 첨부하였으니 확인하여 주시기 바랍니다."


class Charsets(unittest.TestCase):
    def check(self, text, codec, declared):
        self.assertEqual(body(mail(part(text.encode(codec), charset=declared))), text, (codec, declared))

    def test_utf8_under_another_label_survives_damage(self):
        for label in ("gb2312", "big5", "euc-kr", "windows-1251", "iso-2022-jp"):
            self.check("您好" if label == "gb2312" else SIMPLIFIED[3:], "utf-8", label)
            damaged = part(SIMPLIFIED.encode()[:-3] + b"\xe3\x80 ok", charset=label)
            self.assertIn(SIMPLIFIED[:-1], body(mail(damaged)), label)

    def test_western_text_is_not_taken_for_east_asian(self):
        for text in ("Schöne Grüße aus München, wir hören uns nächste Woche über die Fußnote",
                     "L’été dernier, le musée a fermé; “déjà vu”", "Today’s news", "£5 – all in", "één café"):
            for label in ("", "us-ascii", "iso-8859-1"):
                self.check(text, "cp1252", label)

    def test_damage_stays_local(self):
        data = SIMPLIFIED.encode("gb18030")
        text = body(mail(part(data + b"\xff\n" + data, charset="gb2312")))
        self.assertTrue(text.startswith(SIMPLIFIED) and text.endswith(SIMPLIFIED), text)
        unassigned = KOREAN.encode("cp949") + b"\xc9\xa1" + KOREAN.encode("cp949")
        self.assertEqual(body(mail(part(unassigned, charset="euc-kr"))), KOREAN + "\ufffd" + KOREAN)
        self.assertEqual(body(mail(part("日本語の文章 caf".encode() + b"\xe9 ok", charset="utf-8"))), "日本語の文章 café ok")

    def test_vendor_rows_of_japanese_sets(self):
        euc = b"\xad\xa1\xfc\xe2" + "橋様のご確認をお願いします".encode("euc_jp")
        self.assertEqual(body(mail(part(euc, charset="euc-jp"))), "①髙橋様のご確認をお願いします")
        jis = b"\x1b$B\x2d\x21\x7c\x62\x1b(B ok"
        self.assertEqual(body(mail(part(jis, charset="iso-2022-jp"))), "①髙 ok")

    def test_form_of_the_text(self):
        for data, expected in ((b"a\r\nb\rc\nd \t\ne", "a\nb\nc\nd\ne"), (b"a\0b\x07c\x7f", "abc"),
                               ("e\u0301 \u1100\u1161".encode(), "é 가"), (("x" + "\u1100\u1161" * 999).encode(), "x" + "가" * 999), ("a\u00a0b".encode(), "a b"),
                               ("x \uf0f1QUOTE\uf0f1 y".encode(), "x QUOTE y"), ("\ufeffbom".encode(), "bom"),
                               ("请查收".encode("utf-8").decode("latin-1").encode("utf-8"), "请查收")):
            self.assertEqual(body(mail(part(data))), expected)

    def test_html_tells_its_charset_where_the_header_does_not(self):
        markup = "<html><head><meta http-equiv=Content-Type content='text/html; charset=gb2312'></head><body>您好吗</body>"
        for label in ("", "us-ascii", "iso-8859-1"):
            self.assertEqual(body(mail(part(markup.encode("gb18030"), "text/html", label))), "您好吗")

    def test_single_bytes_that_are_called_wide(self):
        markup = "<html><head><meta http-equiv=Content-Type content='text/html; charset=unicode'></head><body>%s</body></html>"
        for text, codec in (("plain words", "ascii"), ("it’s a café", "cp1252"), ("您好，附件是会议纪要", "gb18030")):
            for label in ("", "us-ascii", "unicode"):
                self.assertEqual(body(mail(part((markup % text).encode(codec), "text/html", label))), text, (codec, label))
        self.assertEqual(body(mail(part("it’s what we said".encode("cp1252"), charset="unicode"))), "it’s what we said")
        for order in ("utf-16-le", "utf-16-be"):
            self.assertEqual(body(mail(part((markup % SIMPLIFIED).encode(order), "text/html", "unicode"))), SIMPLIFIED)


class TransferEncodings(unittest.TestCase):
    def test_names_and_damage(self):
        raw = SIMPLIFIED.encode()
        b64 = base64.encodebytes(raw)
        soft = encode(raw, "quoted-printable")
        for field, data in (("base64", b64), ("BASE64", b64), (" \"base64\"", b64), ("base64 (comment)", b64), ("base-64", b64),
                            ("base64", b64.replace(b"\n", b"\r\n")), ("base64", b64.rstrip(b"=\n")), ("base64", b"!" + b64),
                            ("base64", b64[:20] + b"\n*-*\n\n" + b64[20:]), ("base64", base64.b64encode(raw[:1]) +
                                                                              b"\n" + base64.b64encode(raw[1:])),
                            ("Quoted-Printable", soft), ("quoted-printable", soft.replace(b"=\n", b"= \t\r\n")),
                            ("quoted-printable", soft.lower()), ("x-unknown", raw), ("", raw), ("8bit;", raw), ("base64", raw)):
            head = "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: %s\n\n" % field
            self.assertEqual(body(head.encode() + data), SIMPLIFIED, (field, data[:30]))

    def test_forgotten_and_false_encodings(self):
        raw = (SIMPLIFIED * 3).encode()
        b64, soft = base64.encodebytes(raw), encode(raw, "quoted-printable")
        key = base64.encodebytes(bytes(range(256)))
        for declared, data, expected in (("", b64, raw), ("7bit", b64, raw), ("quoted-printable", b64, raw), ("", soft, raw), ("8bit", soft, raw),
                                         ("base64", soft, raw), ("base64", b"Hello", b"Hello"), ("", key, key), ("quoted-printable", raw, raw),
                                         ("", b"a=E4=BD and x=1", b"a=E4=BD and x=1")):
            head = "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: %s\n\n" % declared
            self.assertEqual(body(head.encode() + data), expected.decode().strip(), (declared, data[:20]))

    def test_text_behind_base64_is_kept(self):
        data = base64.encodebytes(b"hello world, this is the body of it all\n" * 2) + b"\n_______\nlist footer of some words\n"
        text = body(b"Content-Transfer-Encoding: base64\n\n" + data)
        self.assertEqual(text.split("\n\n\n")[0].count("hello"), 2)
        self.assertIn("list footer of some words", text)

    def test_uuencoded_text_and_files_inside_text(self):
        block = b"begin 644 a.txt\n%:&5L;&\\\n`\nend\n"
        self.assertEqual(body(b"Content-Transfer-Encoding: x-uuencode\n\n" + block), "hello")
        self.assertEqual(body(b"\nbefore\n" + block + b"after"), "before\n[a.txt]\nafter")
        self.assertEqual(body(b"\nbegin 5 things\nthe end"), "begin 5 things\nthe end")


class Structure(unittest.TestCase):
    def test_text_is_found_in_every_shape(self):
        text, other = part("第一段文字"), part("second text")
        inner = multipart("alternative", text, part("<p>第一段文字</p>", "text/html"), boundary="b0undary-2")
        no_end = multipart("mixed", text)[:-len("--b0undary--\n")]
        for name, message in (
                ("prefix boundary", multipart("mixed", inner, other)), ("not ended", no_end + b"\n"),
                ("inner not ended", multipart("mixed", inner.replace(b"--b0undary-2--\n", b""), other)),
                ("same boundary", multipart("mixed", multipart("alternative", text), other)),
                ("quoted", multipart("mixed", text, boundary="=_(a):b/c?'+,-. d")), ("unquoted odd", multipart(
                    "mixed", text, boundary="=_a:b(c)").replace(b'"=_a:b(c)"', b"=_a:b(c)")),
                ("no parameter", multipart("mixed", text).replace(b'; boundary="b0undary"', b"")),
                ("folded", multipart("mixed", text).replace(b"; boundary", b";\n\t boundary")),
                ("junk behind the end", multipart("mixed", text).replace(b"--b0undary--\n", b"--b0undary-->\nx")),
                ("part after the end", multipart("mixed", text) + b"--b0undary\n" + other),
                ("encoded multipart", b"Content-Type: multipart/mixed; boundary=b0undary\nContent-Transfer-Encoding: base64\n\n" +
                 base64.encodebytes(multipart("mixed", text).partition(b"\n\n")[2])), ("digest", multipart("digest", b"\n" + mail(text))),
                ("forwarded encoded", part(mail(text), "message/rfc822", encoding="base64")),
                ("forwarded in forwarded", part(mail(part(mail(multipart("mixed", text)), "message/rfc822")), "message/rfc822")),
                ("blank line of blanks", multipart("mixed", text).replace(b"\n\n", b"\n \n", 1)),
                ("no blank line", b"Subject: x\n" + "第一段文字".encode()), ("no header", "\n第一段文字".encode()),
                ("only text", "第一段文字，没有标题".encode()), ("lone fields", multipart("mixed", text).replace(
                    b"\n--b0undary\n", b"\n--b0undry x\n")), ("no boundary line", multipart("mixed", text).replace(b"--b0undary\n", b"")),
                ("bad line in the header", b"garbage line\n" + mail(text))):
            with self.subTest(name):
                self.assertIn("第一段文字", body(mail(message) if name not in ("only text", "no header") else message))
                if b"second text" in message:
                    self.assertIn("second text", body(mail(message)))

    def test_what_is_not_body(self):
        for hidden in (part("secret", extra="Content-Disposition: attachment; filename=a.txt\n"),
                       part("secret", "text/rtf"), part("secret", "application/json"), part("secret", "text/css"),
                       part("secret", extra="Content-Disposition: ATTACHMENT\n")):
            self.assertEqual(body(mail(multipart("mixed", part("shown"), hidden))), "shown")
        preamble = multipart("mixed", part("shown")).replace(b"\n\n", b"\n\nsecret\n", 1) + b"secret\n"
        self.assertEqual(body(mail(preamble)), "shown")

    def test_the_alternative_that_a_reader_would_choose(self):
        long_html = "<p>%s</p>" % ("正文内容很长。" * 40)
        for name, plain, markup, expected in (
                ("plain wins", "plain text of the message", "<p>plain text of the message</p>", "plain text of the message"),
                ("stub loses", "Your mail client does not support HTML messages.", "<p>The real text of it</p>", "real text"),
                ("chinese stub loses", "您的邮件客户端不支持HTML格式，请升级。", long_html, "正文内容很长"),
                ("empty loses", " \n ", "<p>real</p>", "real"), ("teaser loses", "Hello", long_html, "正文内容很长"),
                ("links do not count", "See https://example.com/" + "x" * 400, long_html, "正文内容很长"),
                ("question marks lose", "??????? ???? ??", "<p>您好，会议改期</p>", "您好，会议改期"),
                ("markup in plain loses", "<div>您好&nbsp;</div>", "<p>您好</p>", "您好")):
            with self.subTest(name):
                text = body(mail(multipart("alternative", part(plain), part(markup, "text/html"))))
                self.assertIn(expected, text)
                self.assertEqual(name == "plain wins", text == plain)

    def test_special_types(self):
        event = ("BEGIN:VCALENDAR\nBEGIN:VEVENT\nSUMMARY:项目评审\\, 第二次\nDTSTART;TZID=Asia/Shanghai:20240102T100000\n"
                 "DTEND:20240102T030000Z\nLOCATION:三楼会\n 议室\nDESCRIPTION:带材料\\n准时\nEND:VEVENT\nEND:VCALENDAR\n")
        for said, expected in (("邀请", "邀请"), (" ", "日程：项目评审, 第二次\n时间：2024-01-02 10:00 – 2024-01-02 03:00 UTC\n"
                                                 "地点：三楼会议室\n带材料\n准时")):
            self.assertEqual(body(mail(multipart("alternative", part(said), part(event, "text/calendar")))), expected)
        self.assertEqual(body(mail(part("<bold>Hi</bold> <<you\nthere\n\nnext", "text/enriched"))), "Hi <you there\nnext")
        report = multipart("report", part("failed"), part("Final-Recipient: rfc822; x@example.com", "message/delivery-status"))
        self.assertIn("Final-Recipient", body(mail(report)))
        flowed = b"Content-Type: text/plain; format=flowed\n\none \ntwo\n> a \n> b\n>> c\n-- \nsig \n stuffed"
        self.assertEqual(body(flowed), "one two\n> a b\n>> c\n--\nsig stuffed")
        self.assertEqual(body(b"Content-Type: text/plain; format=flowed; delsp=yes\n\n\xe4\xbd\xa0 \n\xe5\xa5\xbd"), "你好")
        entity = part("opaque text")
        der = b"\x30\x80\x06\x09\x2a\x86\x48\x86\xf7\x0d\x01\x07\x01\xa0\x80\x24\x80\x04\x10" + entity[:16] + \
              b"\x04\x81" + bytes([len(entity) - 16]) + entity[16:] + b"\0\0\0\0\0\0"
        self.assertEqual(body(mail(part(der, "application/pkcs7-mime", encoding="base64"))), "opaque text")

    def test_forwarded_headers_are_told(self):
        inner = mail(part("正文"), "From: =?gb2312?B?1cXI/Q==?= <z@example.com>\nTo: 李四 <l@example.com>\nSubject: 会议\n"
                                   "Date: Mon, 1 Jan 2024 10:00:00 +0800\n".encode())
        text = body(mail(multipart("mixed", part("请看"), part(inner, "message/rfc822"))))
        self.assertEqual(text, "请看\n\n发件人：张三 <z@example.com>\n主题：会议\n日期：Mon, 1 Jan 2024 10:00:00 +0800\n"
                               "收件人：李四 <l@example.com>\n\n正文")


class Emlx(unittest.TestCase):
    PLIST = b"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist>\n<plist version=\"1.0\"></plist>\n"

    def test_the_count_cuts_and_a_wrong_one_does_no_harm(self):
        message = mail(part("正文"))
        size = len(message)
        for count in (b"%d" % size, b"%d      " % size, b" %d\r" % size, b"+%d" % size, b"%d" % (size - 4), b"%d" % (size + 9),
                      b"99999999999", b"-1", b"abc", b""):
            data = b"\n" + count + b"\n" + message + self.PLIST
            text = body_text(message_bytes(data, True, False))[0]
            self.assertEqual(text, "正文", count)

    def test_what_stands_before_a_message(self):
        for lead in (b"", b"From a@example.com Mon Jan  1 10:00:00 2024\n", b"\xef\xbb\xbf", b"\r\n\n", b">From x\n"):
            self.assertEqual(body_text(message_bytes(b"\n" + lead + mail(part("正文")), False, False))[0], "正文")


if __name__ == "__main__":
    unittest.main()
