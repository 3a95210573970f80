#include "mime/preview_text.h"

#include <algorithm>
#include <random>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mime/emlx.h"
#include "mime/mime_walk.h"
#include "mime/preview_layout.h"
#include "mime/signature_search.h"
#include "records/texts/preview_placeholders.h"
#include "support/repeated_text.h"
#include "text/charsets/encoding.h"
#include "text/graphemes.h"
#include "text/regex.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mime {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::repeated;

std::string message(std::string_view fields, std::string_view body) {
    return fmt::format("Subject: x\n{}\n\n{}", fields, body);
}

std::string preview(std::string_view fields, std::string_view body) {
    return previewText(message(fields, body));
}

TEST(Preview, ChoosesThePlainPartAndDecodesIt) {
    const std::string alternative = "--b\nContent-Type: text/html\n\n<p>rich</p>\n--b\n\n"
                                    "--b\nContent-Type: text/plain\n\nplain\n--b--\n";

    struct {
        std::string fields;
        std::string body;
        std::string expected;
    } const cases[] = {
        {"", "hello", "hello"},
        {"Content-Type: multipart/alternative; boundary=b", alternative, "plain"},
        {"Content-Type: Multipart/Alternative;\n\tcharset=x; BOUNDARY = \"b\" ", alternative, "plain"},
        {"Content-Type: multipart/mixed; boundary=b",
         "--b\nContent-Disposition: attachment; filename=a\n\nfile\n--b\nContent-Type: "
         "text/html\n\n<b>rich</b>\n",
         "rich"},
        {"Content-Type: multipart/mixed; boundary=b", "--b\nContent-Type: image/png\n\nxx\n--b--",
         "暂无正文预览"},
        {"Content-Type: multipart/mixed", "--b\nContent-Type: text/plain\n\nx", "暂无正文预览"},
        {"Content-Type: multipart/mixed; boundary=other", alternative, "暂无正文预览"},
        {"Content-Type: multipart/mixed; boundary=b",
         "--b\nContent-Type: message/rfc822\n\nSubject: inner\n\nforwarded\n--b--", "forwarded"},
        {"Content-Type: message/delivery-status\nContent-Transfer-Encoding: base64",
         "U3ViamVjdDogeAoKaW5uZXI=", "inner"},
        {"Content-Type: application/pdf", "x", "暂无正文预览"},
        {"Content-Type: text/plain; charset=GB2312\nContent-Transfer-Encoding: Base64",
         "xOO6\n ww==", "ÄãºÃ"},
        {"Content-Type: text/plain; charset=gb2312\nContent-Transfer-Encoding: base64",
         "xOO6\r\n\u3000ww==", "你好"},
        {"Content-Type: text/plain; charset=GBK", "\u00C4\u00E3\u00BA\u00C3", "你好"},
        {"Content-Type: text/plain; charset=gbk", "你好", "你好"},
        {"Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: quoted-printable",
         "caf=E9 =\nau=20lait=2=G", "café au lait=2=G"},
        {"Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: quoted-printable", "=FF",
         "=FF"},
        {"Content-Transfer-Encoding: base64", "not base64!", "not base64!"},
        {"Content-Type: text/html",
         "body { color: red }\n<html><style>x{}</STYLE ><style>p{}</style>"
         "a&amp;lt;<br/>b</P ><script>evil()</script>c &#39;d&nbsp;e</html>",
         "a<\nb\nc 'd e"},
    };

    for (const auto& [fields, body, expected] : cases)
        EXPECT_EQ(preview(fields, body), expected) << fields << body;
    EXPECT_EQ(previewText("no header end"), "暂无正文预览");
    EXPECT_EQ(previewText("A: b\n\nC: d\r\n\r\nbody"), "body");
    EXPECT_EQ(previewText("A: b\r\nContent-Type: text/plain\r\n\r\none\r\n\r\ntwo"), "one\n\ntwo");
}

TEST(Preview, DepthIsBounded) {
    std::string inner = "Content-Type: text/plain\n\ndeep";
    for (int depth = 1; depth <= 3; ++depth)
        inner = fmt::format("Content-Type: multipart/mixed; boundary=b{0}\n\n--b{0}\n{1}\n--b{0}--\n", depth,
                            inner);
    EXPECT_EQ(previewText(inner), "deep");
    EXPECT_EQ(
        previewText(fmt::format("Content-Type: multipart/mixed; boundary=b\n\n--b\n{}\n--b--\n", inner)),
        emptyBodyPreviewPlaceholder);
}

TEST(Preview, IsCutAtCharactersOfThePersonWhoReads) {
    const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";
    for (const std::string& character : {std::string("x"), std::string("e\u0301"), family}) {
        EXPECT_EQ(preview("", repeated(character, 280)), repeated(character, 280));
        EXPECT_EQ(preview("", repeated(character, 281)), repeated(character, 280));
    }
}

TEST(MIMEParts, EndAtTheirMarkers) {
    EXPECT_THAT(
        splitMIMEParts(
            "preamble\r\n--b\r\n one \r\n\r\ntwo\r\n--b\n\n--b\n--bc\n--b \nthree\n--b--\nafter\n--b\nx",
            "b"),
        ElementsAre("one \n\ntwo", "--bc\n--b \nthree"));
    EXPECT_THAT(splitMIMEParts("--b\nopen", "b"), ElementsAre("open"));
    EXPECT_THAT(splitMIMEParts("--b", "b"), IsEmpty());
    EXPECT_THAT(splitMIMEParts("--b--\n--b\nx", "b"), IsEmpty());
    EXPECT_THAT(splitMIMEParts("", ""), IsEmpty());
    EXPECT_EQ(mimeHeaderParameter("boundary", "a; xboundary=1; boundary=\"\"; Boundary = 2 ;boundary=3"),
              "\"\"");
    EXPECT_EQ(mimeHeaderParameter("boundary", "boundary=\"a;b\""), "a;b");
    EXPECT_EQ(mimeHeaderParameter("boundary", "a;boundary=\"open; b=c"), "\"open");
    EXPECT_EQ(mimeHeaderParameter("a.c", "x; abc=1"), std::nullopt);
    EXPECT_EQ(mimeHeaderValue(" text/plain ; x"), "text/plain");
}

TEST(PreviewLayout, StripsSignaturesOnlyBehindAText) {
    const std::string text = "A text with some length";
    for (const char* closing :
         {"--", "  -- ", "Best regards,", "THANKS!！", "br", "Cheers\n\nBob", "此致", "敬上。",
          "从我的 iPhone 发送", "Sent from my phone", "This email and any attachments are secret"})
        EXPECT_EQ(stripSignatureContent(text + "\n \n\n" + closing + "\nrest"), text + "\n") << closing;
    for (const char* open : {"thanks to all", "---", "thank you Bob", "从我的", "发送", "brother", "x --"})
        EXPECT_EQ(stripSignatureContent(text + "\n" + open), text + "\n" + open) << open;
    EXPECT_EQ(preview("", "Thanks"), "Thanks");
    EXPECT_EQ(preview("", "12345678901\nThanks"), "12345678901\nThanks");
    EXPECT_EQ(preview("", "123456\n 789012\nThanks"), "123456\n789012");
    // The first place of its kind comes too early, and no other is looked for.
    EXPECT_EQ(preview("", "Hi\nThanks\na long enough text\nThanks\nend"),
              "Hi\nThanks\na long enough text\nThanks\nend");
    EXPECT_EQ(preview("", "Hi\nThanks\na long enough text\n此致\nend"), "Hi\nThanks\na long enough text");
}

TEST(PreviewLayout, DropsWhatIsNoText) {
    EXPECT_EQ(normalizedPreviewFormatting("a\t\v\u2028 b\r\rc\r\n\n\n\n  d  "), "a b\n\nc\n\nd");
    for (const char* line : {"Content-Type: x", "MIME-Version: 1.0", "content-id:<a>", "--x=_y",
                             "This is a multi-part message in MIME format.", "p.a > b { color: red }",
                             "td {} after", "font: x; width: 3px", ".htmlarea { }", "@media print { x }"})
        EXPECT_EQ(normalizedPreviewFormatting(fmt::format("a\n{}\nb", line)), "a\nb") << line;
    for (const char* line : {"see content-type: x", "a { b", "width: 3px", "} {", "-- x", "p {}"})
        EXPECT_EQ(normalizedPreviewFormatting(fmt::format("a\n{}\nb", line)), fmt::format("a\n{}\nb", line))
            << line;
    EXPECT_EQ(preview("", "--=_Part_1\ntext"), "text");
    EXPECT_EQ(stripLeadingCSSNoise(" .a { x }\n#b { y } p{z} 1 text { w }"), "1 text { w }");
    EXPECT_EQ(stripLeadingCSSNoise("Dear {name}, hello"), ", hello");
    EXPECT_EQ(stripLeadingCSSNoise("1a { x } b"), "1a { x } b");
}

TEST(PreviewLayout, KnowsACorruptPreview) {
    for (const char* text :
         {"正在加载正文预览...", "x Content-Type: y", "CONTENT-TRANSFER-ENCODING:", "body{a}", ".HTMLarea",
          "waveline", "font:10pt", "ÄÃÅÆ", "This is a multi-part message in MIME format"})
        EXPECT_TRUE(previewLooksCorrupt(text)) << text;
    for (const char* text : {"", "暂无正文预览", "body {", "ÄÃÅ", "正在加载正文预览"})
        EXPECT_FALSE(previewLooksCorrupt(text)) << text;
}

// The expressions as they are meant, without care for the time that they take.
std::string plainlyStripped(const std::string& text) {
    static const text::Regex patterns[] = {
        text::Regex(R"re((?im)^\s*--\s*$)re"),
        text::Regex(
            R"re((?im)^\s*(best regards|kind regards|regards|thanks|thank you|sincerely|cheers|br)[,.:;!！。；：，\s]*$)re"),
        text::Regex(
            R"re((?im)^\s*(此致|敬上|谢谢|祝好|顺祝商祺|发自我的|从我的.+发送|免责声明)[,.:;!！。；：，\s]*$)re"),
        text::Regex(
            R"re((?im)^\s*(sent from my|confidentiality notice|this e-mail and any attachments|this email and any attachments).*$)re")};
    std::size_t earliest = text.size();
    for (const auto& pattern : patterns) {
        const auto match = pattern.firstMatch(text);
        if (!match) continue;
        std::string before;
        static const text::Regex lineEnd(R"re([\n\x{0B}\f\r\x{85}\x{2028}\x{2029}])re");
        const std::string lines =
            lineEnd.replacingAll(std::string_view(text).substr(0, match->start()), "\n");
        for (const auto line : text::splitText(lines, '\n'))
            before.append(text::trimWhitespaceAndNewlines(line));
        if (text::graphemeCount(before) >= 12) earliest = std::min(earliest, match->start());
    }
    return text.substr(0, earliest);
}

std::string randomText(std::mt19937& random, const std::vector<std::string>& pieces, std::size_t length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i) text += pieces[random() % pieces.size()];
    return text;
}

TEST(PreviewLayout, QuickFormsMatchTheExpressionsTheyStandFor) {
    std::mt19937 random(7);
    const std::vector<std::string> lines = {
        "\n",   "\n",     "\r\n", " ", "\t", "\f",           "\u2028",          "--",   "-", "Thanks", "br",
        "此致", "从我的", "发送", "!", "，", "sent from my", " words to read ", "长文", "\v"};
    const std::vector<std::string> marks = {
        "<style", "<STYLE>", "</style>", "</style", "<script", "</script>", "<",   ">",
        "<b",     "/",       "p",        " ",       "\n",      "<br",       "</p", "a{",
        "}",      ".b",      "{",        "\r\n",    "&amp;",   "lt;"};
    const text::Regex style(R"re((?i)<style[\s\S]*?</style>)re");
    const text::Regex script(R"re((?i)<script[\s\S]*?</script>)re");
    const text::Regex tag("<[^>]+>");
    const text::Regex rules(R"re((?is)^\s*(?:[@.#]?[A-Za-z_][A-Za-z0-9_\-]*[^{\r\n]*\{[^}]*\}\s*)+)re");
    const text::Regex element(
        R"re((?is)^\s*(?:body|html|table|td|p|div|span|a|img|font)[^{\r\n]*\{[^}]*\}\s*)re");
    for (int round = 0; round < 4000; ++round) {
        const std::string mail = randomText(random, lines, random() % 30);
        ASSERT_EQ(stripSignatureContent(mail), plainlyStripped(mail)) << ::testing::PrintToString(mail);

        const std::string html = randomText(random, marks, random() % 25);
        std::string expected(text::trimWhitespaceAndNewlines(html));
        for (const text::Regex* pattern : {&rules, &element}) {
            const auto match = pattern->firstMatch(expected);
            if (match && match->start() == 0)
                expected = text::trimWhitespaceAndNewlines(std::string(expected, match->length()));
        }
        ASSERT_EQ(stripLeadingCSSNoise(html), expected) << html;
        expected = tag.replacingAll(
            text::Regex(R"re((?i)</p\s*>)re")
                .replacingAll(
                    text::Regex(R"re((?i)<br\s*/?>)re")
                        .replacingAll(script.replacingAll(style.replacingAll(expected, " "), " "), "\n"),
                    "\n"),
            " ");
        expected = text::Regex("(?m)^--.*$").replacingAll(plainlyStripped(htmlEntityDecoded(expected)), "");
        ASSERT_EQ(plainPreviewText(html), normalizedPreviewFormatting(expected)) << html;
    }
}

TEST(Preview, HostileTextsOfFullSizeComeToAnEnd) {
    const std::size_t bytes = previewByteLimit;
    // Separated by "|".
    constexpr std::string_view pieces = "a|<|<style|{|a{|}|\n|a\n|--\n|br,\n|\u0301\n|a{}|<br |</p | "
                                        "|&amp;|:|width:\n|\f\f|;boundary=|从我的|"
                                        "--b\nContent-Type: text/plain;\n\nx\n";
    for (const std::string_view piece : text::splitText(pieces, '|')) {
        const std::string body = repeated(piece, bytes / piece.size());
        EXPECT_FALSE(preview("Content-Type: text/html", body).empty());
        EXPECT_FALSE(preview("Content-Type: multipart/mixed; boundary=b", body).empty());
        EXPECT_FALSE(preview("Content-Type: multipart/mixed" + body, "x").empty());
    }
}

} // namespace
} // namespace corvane::mime
