"""HTML as readable text, and the markers of signatures and quotes."""

import unittest

from mail_kit import body, html_body, mail, multipart, part

SIGNATURE, QUOTE = "\uf0f0SIG\uf0f0", "\uf0f1QUOTE\uf0f1"


class HtmlToText(unittest.TestCase):
    def check(self, cases):
        for markup, expected in cases:
            with self.subTest(markup[:60]):
                self.assertEqual(html_body(markup), expected)

    def test_blocks_and_lines(self):
        self.check((
            ("<p>one</p><p>two</p>", "one\n\ntwo"), ("<div>one</div><div>two</div>", "one\ntwo"), ("a<br>b<br/>c", "a\nb\nc"),
            ("<div>a</div><div><br></div><div>b</div>", "a\n\nb"), ("<div>a<br></div><div>b</div>", "a\nb"),
            ("a<br><br><br><br>b", "a\n\nb"), ("<h1>T</h1>text", "T\n\ntext"), ("<i>one\n  two\t three</i>", "one two three"),
            ("<b>bo</b><i>ld</i> <u>x</u>", "bold x"), ("<pre>a\n  b\n</pre>", "a\n  b"), ("a<hr>b", "a\n\nb"),
            ("<span style='white-space: pre-wrap'>a\n b</span> c", "a\n b c"), ("no tags &amp; one &lt;", "no tags & one <"),
            ("<p>中文<span>连</span>写</p>", "中文连写"), ("<DIV>A</DIV><P CLASS=x>B", "A\n\nB")))

    def test_lists_and_tables(self):
        self.check((
            ("<ul><li>one</li><li>two<ul><li>in</ul></ul>after", "- one\n- two\n  - in\n\nafter"),
            ("<ol start=3><li><p>three</p><li>four</ol>", "3. three\n\n4. four"), ("<ul><li></li><li>x</li></ul>", "- x"),
            ("<table><tr><th>名称</th><th>数量</th></tr><tr><td><p>苹果</p></td><td>3</td></tr></table>", "名称\t数量\n苹果\t3"),
            ("x<table><tr><td>a<table><tr><td>b</td></tr></table></td></tr></table>y", "x\n\na\nb\n\ny"),
            ("<table><tr><td></td><td>a</td><td> &nbsp; </td><td>b</td></tr></table>", "a\tb")))

    def test_what_is_not_shown(self):
        for hidden in ("<style>p {}</style>", "<script>alert('<p>')</script>", "<title>t</title>", "<!-- c -->", "<!---->",
                       "<!-- a > b <p>x</p> -->", "<!--[if mso]><p>outlook</p><![endif]-->", "<STYLE><!-- x --></STYLE >",
                       "<div style='display:none'>x<div>y</div>z</div>", "<p style=\"a:b; VISIBILITY : hidden\">x</p>", "<div hidden>x</div>",
                       "<div style='max-height:0px;overflow:hidden'>preheader</div>", "<span style='font-size:0px'>x</span>",
                       "<head><meta name=x content='a>b'><title>T</title></head>", "<?xml version='1.0'?>", "<!DOCTYPE html>"):
            self.check((("<p>a</p>%s<p>b</p>" % hidden, "a\n\nb"),))

    def test_what_a_style_sheet_hides_everywhere(self):
        sheet = ("<style><!-- .pre, p.x{color:red;display:none !important} #z{visibility:hidden} @media (max-width:9px) {.d{display:none}} "
                 ".in .b{display:none} /* .e{display:none} */ .m{color:red} --></style>")
        self.check(((sheet + "<p class='a pre'>no</p><p class=x>no</p><div id=z>no</div><img class=pre alt=no><p>a</p>", "a"),
                    (sheet + "<p class=d>d</p><p class=b>b</p><p class=e>e</p><p class=m>m</p><p class=x>no end", "d\n\nb\n\ne\n\nm\n\nno end")))

    def test_what_is_shown_all_the_same(self):
        self.check((
            ("<!--[if !mso]><!--><p>a</p><!--<![endif]-->", "a"), ("<![if !vml]>pic<![endif]>", "pic"),
            ("<td style='font-size:0'><div style='font-size:14px'>a</div></td>", "a"), ("<div style='display:none'>no end", "no end"),
            ("<div style='line-height:0;overflow:hidden'>a</div>", "a"), ("<a style='mso-hide:all'>Button</a>", "Button"),
            ("<div aria-hidden='true'>a</div>", "a"), ("a <!-- x > no end", "a no end"), ("<style>no end <p>a</p>", "a"), ("a < b & c > d", "a < b & c > d"),
            ("<a title='x' alt=\"a > b\">text</a>", "text"), ("From: Li <li@example.com><br>Hi", "From: Li <li@example.com>\nHi"),
            ("zero\u200bwidth s\u00adoft", "zerowidth soft"), ("<textarea>t</textarea><button>b</button>", "tb")))

    def test_links_pictures_and_entities(self):
        self.check((
            ("<a href='https://example.com/x'>here</a>", "here"), ("<a href='https://example.com/x'></a>", "https://example.com/x"),
            ("<a href='https://example.com/x'><img src=a.png></a>", ""), ("a<img alt='logo' src=x>b<img alt=''><img alt=pixel style='display:none'>", "a logo b"),
            ("&lt;b&gt; &quot;x&quot;&nbsp;&copy;&eacute;&hellip;", "<b> \"x\" ©é…"), ("&#20013;&#x6587;&#146;&#150;", "中文’–"),
            ("&#55357;&#56832;&#xD83D;", "😀\ufffd"), ("&#0;&#7;&#99999999;&unknown;&amp", "\ufffd&unknown;&")))

    def test_plain_text_that_is_html(self):
        self.assertEqual(body(mail(part("<html><body><p>a</p><p>b</p></body></html>"))), "a\n\nb")


class Markers(unittest.TestCase):
    def test_known_clients(self):
        attribution = "On Monday, Li wrote:"
        for markup in (
                "<div>answer</div><br><div class=\"gmail_quote\"><div class=\"gmail_attr\">%s<br></div><blockquote "
                "class=\"gmail_quote\" style=\"x\"><div>old text</div></blockquote></div>",
                "<div>answer</div><blockquote type=\"cite\"><div>%s</div><br>old text</blockquote>",
                "<p>answer</p><div class=\"moz-cite-prefix\">%s<br></div><blockquote type=\"cite\" cite=\"mid:x\">old text</blockquote>",
                "<div>answer</div><hr><div id=\"divRplyFwdMsg\" dir=\"ltr\">%s</div><div>old text</div>",
                "<p>answer</p><div><div style='border:none;border-top:solid #E1E1E1 1.0pt;padding:3.0pt 0cm 0cm 0cm'><p>%s</p></div></div>"
                "<p>old text</p>", "<div>answer</div><div class='yahoo_quoted'>%s<div>old text</div></div>"):
            with self.subTest(markup[:60]):
                main, quote, old = html_body(markup % attribution).partition(QUOTE)
                self.assertEqual((main.strip(), quote), ("answer", QUOTE))
                self.assertTrue(old.strip().startswith(attribution) and old.endswith("old text"), old)
                self.assertNotIn(SIGNATURE, old)

    def test_signatures(self):
        for markup in ("<div>text</div><div class=\"gmail_signature\" data-smartmail=\"gmail_signature\">Li<br>Tel 1</div>",
                       "text<br><div id=\"AppleMailSignature\">Li<br>Tel 1</div>", "text<div id=\"Signature\">Li<br>Tel 1</div>",
                       "text<pre class=\"moz-signature\" cols=\"72\">Li\nTel 1</pre>"):
            self.assertEqual(html_body(markup), "text\n%s\nLi\nTel 1" % SIGNATURE)

    def test_signature_then_quote_with_a_signature_inside(self):
        text = html_body("<div>new</div><div class='gmail_signature'>me</div><div class='gmail_quote'>old<div class='gmail_signature'>"
                         "you</div>rest<blockquote class='gmail_quote'>older</blockquote></div>")
        self.assertEqual(text.split("\n"), ["new", SIGNATURE, "me", QUOTE, "old", SIGNATURE, "you", QUOTE, "rest", QUOTE, "older"])

    def test_no_marker_where_a_fold_would_hide_an_answer(self):
        quote = "<blockquote type=cite>their question</blockquote>"
        for markup in (quote + "<div>my answer</div>", "<div>hi</div>" + quote + "<div>my answer</div>" + quote + "<p>bye</p>",
                       "<div class=gmail_signature>me</div><p>my answer</p>", "<blockquote>indented</blockquote>my answer",
                       "<div class='signature quote'>my answer</div>", quote):
            text = html_body(markup)
            self.assertNotIn("\uf0f0", text)
            self.assertNotIn("\uf0f1", text)
        interleaved = html_body("<p>a</p>" + quote + "<p>b</p>" + quote)
        self.assertEqual(interleaved.split("\n\n"), ["a", "their question", "b\n" + QUOTE + "\ntheir question"])

    def test_html_with_marks_is_preferred_and_forged_marks_go(self):
        plain = part("answer\n\nOn Monday, Li wrote:\n> old")
        rich = part("<div>answer</div><div class='gmail_quote'>On Monday, Li wrote:<blockquote>old</blockquote></div>", "text/html")
        self.assertIn("answer\n" + QUOTE, body(mail(multipart("alternative", plain, rich))))
        self.assertEqual(html_body("a%sb&#xF0F1;QUOTE&#xF0F1;c" % QUOTE), "aQUOTEbQUOTEc")


if __name__ == "__main__":
    unittest.main()
