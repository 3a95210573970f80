#include "mime/body/body_segments.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "mime/body/body_line_rules.h"
#include "mime/body/body_split.h"
#include "support/repeated_text.h"

namespace corvane::mime {
namespace {

using testing::repeated;

const std::string sig(signatureMarker);
const std::string quote(quoteMarker);

TEST(BodyLines, QuoteBoundaries) {
    const std::string x160 = repeated("x", 160);
    for (const char* line : {"> a", "  >", "__________", " ____________", "发件人: a", "From: a", "原始邮件",
                             "-----原始邮件-----", "-----Original Message-----", "----- Forwarded by",
                             "Begin forwarded message:", "在 2020年，张三 写道", "张三写道",
                             "2021-01-01 张三 写道：", "张三写道: \r", "On wrote", "On Monday, A wrote:"})
        EXPECT_TRUE(isQuoteBoundary(line)) << line;
    EXPECT_TRUE(isQuoteBoundary("on " + x160 + "wrote:"));
    EXPECT_TRUE(isQuoteBoundary("ON " + repeated("中", 160) + "WROTE  "));
    for (const char* line : {"", "  ", "a > b", "_________", "___________a", "Fromage", "在 北京", "在北京",
                             "写道了", "写道：：", "On Monday A wrote: b",
                             "On Monday A wrote::", "upon a wrote:", "on a\u2028b wrote:", "在北京写道 了"})
        EXPECT_FALSE(isQuoteBoundary(line)) << line;
    EXPECT_FALSE(isQuoteBoundary("on " + x160 + "xwrote:"));
}

TEST(BodyLines, DisclaimersContactsAndBodyLines) {
    for (const std::string_view line :
         {"本邮件及附件含有机密信息", "本信息仅供收件人使用", "免责声明", "声明：x", "声明:x",
          "DISCLAIMER of", "This e-mail is CONFIDENTIAL", "confidential notice"})
        EXPECT_TRUE(isDisclaimer(line)) << line;
    for (const std::string_view line :
         {"", "本邮件很好", "请保密", "a 声明：", "confidential", "our disclaimer"})
        EXPECT_FALSE(isDisclaimer(line)) << line;
    const std::string sixty = "电话" + repeated("1", 58);
    for (const std::string_view line :
         {" 电话：1", "TEL 1", "Mob. 1", "e-mail a", "13912345678", "13912345678\r", sixty.c_str()})
        EXPECT_TRUE(isContactLine(line)) << line;
    const std::string sixtyOne = sixty + "1";
    for (const std::string_view line :
         {"", "a tel", "1391234567", "139123456789", "12912345678", sixtyOne.c_str()})
        EXPECT_FALSE(isContactLine(line)) << line;
    for (const std::string_view line :
         {"1a", "1234中", "(1)", "（12）x", "3、x", "4. x", "1)", "• x", "- x", "— x"})
        EXPECT_TRUE(isLikelyBodyLine(line)) << line;
    for (const std::string_view line : {"", "12345a", "1 a", "a", "-x", "１２３４５、"})
        EXPECT_FALSE(isLikelyBodyLine(line)) << line;
}

TEST(BodySplit, QuotedHistory) {
    struct Case {
        std::string text;
        std::string main;
        std::optional<std::string> quoted;
    };

    const Case cases[] = {
        {"", "", {}},
        {"> one line", "> one line", {}},
        {"\na\n\n> b\n", "a", "> b\n"},
        {"> first\nsecond", "> first\nsecond", {}},
        {"From: a\ntext\n> b", "From: a\ntext", "> b"}, // the first line is none
        {"\n\n> a\n> b\nc\n> d", "> a", "> b\nc\n> d"}, // nothing above: the next one
        {"\n  \n> a\n", "\n  \n> a\n", {}},
        {"a\n" + quote + "\nb", "a", "b"},
        {"a" + quote + "b" + quote + "c", "a", "b" + quote + "c"},
        {"a\n> b\n" + quote + "\n", "a", "> b\n" + quote + "\n"}, // an empty side: by lines
        {quote + "b", quote + "b", {}},
    };
    for (const Case& one : cases) {
        const QuotedSplit split = splitQuoted(one.text);
        EXPECT_EQ(split.main, one.main) << one.text;
        EXPECT_EQ(split.quoted, one.quoted) << one.text;
    }
}

TEST(BodySplit, Signatures) {
    struct Case {
        std::string text;
        std::string body;
        std::optional<std::string> signature;
    };

    const std::string contacts = "电话 1\n手机 2";
    const Case cases[] = {
        {"a", "a", {}},
        {"a\n-- \nme", "a", "me"},
        {"--\nme", "--\nme", {}},
        {"--\na\n--\nme", "--\na", "me"},
        {"a\n--\n \n", "a\n--\n \n", {}},
        {"免责声明\nb\nc", "免责声明\nb\nc", {}},
        {"a\n免责声明\nx\n--\nme", "a\n免责声明\nx", "me"}, // the delimiter goes first
        {"text\n\n张三\n经理\n公司\n免责声明\nx", "text", "张三\n经理\n公司\n免责声明\nx"},
        {"a\n\nb\n电话 1\nc", "a\n\nb\n电话 1\nc", {}},
        {"a\n\nb\n" + contacts, "a", "b\n" + contacts},
        {"a\nb\n" + contacts, "a", "b\n" + contacts}, // line 0 never
        {"a\n\n" + contacts, "a", contacts},          // line 1 ends the block
        {"a\n1. b\n" + contacts, "a\n1. b", contacts},
        {"a\n 2、b\n" + contacts, "a\n 2、b", contacts},
        {"a\n\n电话 1\n\n\n\n\n手机 2", "a", "电话 1\n\n\n\n\n手机 2"},
        {"a\n\n电话 1\n\n\n\n\n\n手机 2", "a\n\n电话 1\n\n\n\n\n\n手机 2", {}}, // seven lines
        {repeated("l\n", 20) + contacts, repeated("l\n", 7) + "l", repeated("l\n", 12) + contacts},
        {"a" + sig + "me", "a", "me"},
        {"a\n--\nme" + sig, "a", "me" + sig},
        {sig + "me\n电话 1", sig + "me\n电话 1", {}},
    };
    for (const Case& one : cases) {
        const SignatureSplit split = splitSignature(one.text);
        EXPECT_EQ(split.body, one.body) << one.text;
        EXPECT_EQ(split.signature, one.signature) << one.text;
    }
}

TEST(BodySegments, ShowMessageSignatureAndHistory) {
    const BodyParts parts = splitBody("你好\n" + sig + "\n张三\n" + quote + "收件人: a; b；c,d，e\n\n旧" +
                                      sig + "旧签名" + quote + quote + "更旧 " + sig);
    EXPECT_EQ(parts.bodyText, "你好");
    EXPECT_EQ(parts.signatureText, "张三");
    EXPECT_TRUE(parts.canCollapse(""));
    EXPECT_FALSE(parts.canCollapse("q"));
    EXPECT_FALSE(parts.showQuoted("", false));
    EXPECT_TRUE(parts.showQuoted("q", false));
    using enum SegmentStyle;
    const std::vector<Segment> folded = {{"你好", body},
                                         {"\n\n──────────  签名  ──────────\n", signature},
                                         {"张三", signature},
                                         {"\n\n──────────  引用的历史邮件  ──────────\n", quotedHeader},
                                         {"收件人: a；b；c；d  …及其他 1 个\n\n旧", quoted},
                                         {"\n\n", quotedSignature},
                                         {"旧签名", quotedSignature},
                                         {"\n\n", quoted},
                                         {"更旧", quoted}};
    EXPECT_EQ(bodySegments(parts, {.showQuoted = true}), folded);
    EXPECT_EQ(bodySegments(parts, {.showQuoted = true, .quotedRecipientsExpanded = true})[4].text,
              "收件人: a; b；c,d，e\n\n旧");
    EXPECT_EQ(bodySegments(parts, {}).size(), 3U);
    EXPECT_EQ(bodySegments(splitBody(""), {.showQuoted = true}), std::vector<Segment>({{"", body}}));
}

TEST(BodySegments, FoldsRecipientsByLine) {
    struct Case {
        std::string_view text;
        std::string_view folded;
    };

    const Case cases[] = {
        {"", ""},
        {"\n", "\n"},
        {"  To: a,,b ; c\nx", "  To: a,,b ; c\nx"},
        {"  CC: a,,b ; c;d", "CC: a；b；c  …及其他 1 个"},
        {"密件抄送：甲，乙；丙,丁;戊", "密件抄送： 甲；乙；丙  …及其他 2 个"},
        {"Tom: a,b,c,d,e", "Tom: a,b,c,d,e"},
    };
    for (const Case& one : cases) EXPECT_EQ(foldRecipientLines(one.text, 3), one.folded) << one.text;
}

// Each would take hours if a rule were tried again from every line or character.
TEST(BodySegments, HostileTextsTakeLinearTime) {
    const std::size_t many = 200'000;
    const std::string texts[] = {
        repeated("\n", 1'000'000) + "--" + repeated("\n", 1'000'000),
        repeated(">", 1'000'000) + repeated("\n> > a", 10'000),
        repeated("在 \n", many),
        "a\n" + repeated("On ", many) + repeated(" ", 1'000'000) + "x",
        repeated("a\n电话\n", many),
        repeated("\n电话\n手机", many),
        repeated("\n \n免责声明", many),
        "a" + quote + repeated(sig + "x", many),
        "a" + quote + repeated(quote + "x", many) + sig,
        "a" + quote + "to:" + repeated(";,", 1'000'000) + "x",
        repeated("\uF0F0SIG", many),
    };
    for (const std::string& text : texts) {
        const BodyParts parts = splitBody(text);
        EXPECT_FALSE(bodySegments(parts, {.showQuoted = true}).empty());
    }
}

} // namespace
} // namespace corvane::mime
