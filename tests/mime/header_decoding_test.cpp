#include "mime/header_decoding.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mime/attachment_names.h"
#include "mime/emlx.h"
#include "mime/mail_date.h"
#include "mime/message_identifiers.h"
#include "support/temporary_home.h"

namespace corvane::mime {
namespace {

using ::testing::ElementsAre;
using ::testing::Optional;
using std::string_literals::operator""s;

TEST(HeaderDecoding, EncodedWordsAsToldAndNothingElse) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"=?utf-8?B?5L2g5aW9?=", "你好"},
        {"=?UTF-8?Q?a_b=20c?=", "a b c"},
        {"a_b", "a_b"},
        {"a_b =?x", "a b =?x"},
        {"=?utf-8?q?=E4=BD=A0?= =?utf-8?Q?=E5=A5=BD?= x", "你 好 x"},
        {"=?utf-8?B?5L2g5aW9", "=?utf-8?B?5L2g5aW9"},
        {"=?utf-8?B?not base64!?=", "=?utf-8?B?not base64!?="},
        {"=?utf-8?B?/w==?=", "=?utf-8?B?/w==?="},
        {"=?gb2312?B?xOO6ww==?=", "你好"},
        {"=?GBK?Q?=C4=E3?=", "你"},
        {"=?gb18030?Q?=81?=", "=?gb18030?Q?=81?="},
        {"=?iso-8859-1?Q?caf=E9?=", "café"},
        {"=?iso-8859-15?Q?=E9?=", "é"},
        {"=?big5?B?p0E=?=", "§A"},
        {"=?us-ascii?Q?=E4=BD=A0?=", "你"},
        {"=?utf-8?Q?=4?=", "=4"},
        {"=?utf-8?Q?=+1=ZZ?=", "=+1=ZZ"},
        {"=?utf-8?X?abc?=", "=?utf-8?X?abc?="},
        {"=??Q?abc?=", "=??Q?abc?="},
        {"=?utf-8?Q?\?=", "=?utf-8?Q?\?="},
        {"=?=?utf-8?Q?x?=", "=?x"},
        {"=?utf-8?Q?a?b?=", "=?utf-8?Q?a?b?="},
        {"=?utf-8?Q?=3D=3Futf-8=3FQ=3Fx=3F=3D?=", "=?utf-8?Q?x?="},
    };
    for (const auto& [value, expected] : cases) EXPECT_EQ(decodeHeaderValue(value), expected) << value;
}

TEST(HeaderDecoding, HugeHostileHeadersAreReadInOnePass) {
    std::string words;
    std::string openings;
    std::string brackets;
    std::string fields;
    for (int i = 0; i < 500'000; ++i) {
        words += "=?utf-8?Q?a_?=";
        openings += "=?u?Q?";
        brackets += "<";
        fields += "f" + std::to_string(i) + ":\n continued\n";
    }
    EXPECT_EQ(decodeHeaderValue(words).size(), 1'000'000U);
    EXPECT_EQ(decodeHeaderValue(openings).size(), openings.size());
    EXPECT_THAT(normalizedMessageIdentifiers(brackets), ::testing::IsEmpty());
    EXPECT_THAT(normalizedMessageIdentifiers(brackets + ">"), ::testing::IsEmpty());
    EXPECT_EQ(headerFields(fields).size(), 500'000U);
}

TEST(HeaderDecoding, HeaderMapFoldsReplacesAndIgnores) {
    const HeaderMap fields =
        headerText(" lost\nSubject: one\r\n\ttwo\n  three \nno colon\n four\nSUBJECT : other\n"
                   "From:a\nFrom: b:c\nEmpty:\n\nTo: in the body");
    const HeaderMap expected = {
        {"subject", "one two three four"}, {"subject ", "other"}, {"from", "b:c"}, {"empty", ""}};
    EXPECT_EQ(fields, expected);
    EXPECT_THAT(headerText("\n\nTo: body"), ::testing::IsEmpty());
    // With CRLF there is no empty line to be seen, and the body overwrites the header.
    EXPECT_EQ(headerText("To: a\r\n\r\nTo: b").at("to"), "b");
    EXPECT_THAT(decodedHeaderField("TO", "To: =?utf-8?Q?=E4=BD=A0?=\r\n\r\nTo: b"), Optional("你"s));
}

TEST(HeaderDecoding, FieldsOfRawMessagesAreSoughtInABoundedStart) {
    const std::string filler(65536 - 6, 'x');
    EXPECT_EQ(decodedHeaderField("To", "X: " + filler + "\nTo: late\n"), std::nullopt);
    EXPECT_THAT(decodedHeaderField("Cc", "Cc: caf\xE9\n\n"), Optional("caf\uFFFD"s));
    EXPECT_EQ(decodedHeaderField("Bcc", "Cc: a\n\n"), std::nullopt);
}

TEST(HeaderDecoding, MojibakeNeedsFourWholeCharacters) {
    EXPECT_FALSE(looksLikeMojibake("ÄÃÅ plain"));
    EXPECT_TRUE(looksLikeMojibake("ÄÃÅÆ"));
    EXPECT_TRUE(looksLikeMojibake("A\u0308A\u0303A\u030AÆ"));
    EXPECT_FALSE(looksLikeMojibake("Ä\u0316Ã\u0316Å\u0316Æ\u0316"));
    EXPECT_FALSE(looksLikeMojibake("你好éèêë"));
    EXPECT_TRUE(looksLikeMojibake("ÄãºÃÂð½£»"));
    EXPECT_THAT(latin1Data("é"), Optional("\xE9"s));
    EXPECT_EQ(latin1Data("é你"), std::nullopt);
}

TEST(MailDates, AreReadInTheirZoneOrTheLocalOne) {
    const testing::TimeZoneGuard zone("Asia/Shanghai");
    const std::vector<std::pair<std::string, std::optional<std::int64_t>>> cases = {
        {"Mon, 1 Jan 2024 10:00:00 +0800 (CST)", 1'704'074'400},
        {" 1 Jan 2024 02:00:00 +0000\t", 1'704'074'400},
        {"Mon, 1 Jan 2024 10:00:00", 1'704'074'400},
        {"1 Jan 24 02:00:00 +0000", 1'704'074'400},
        {"2024-01-01T02:00:00Z", 1'704'074'400},
        {"2024-01-01T02:00:00+00:00", 1'704'074'400},
        {"2024-01-01T10:00:00.123+08:00", 1'704'074'400},
        {"2024-01-01T02:00:00.5Z", 1'704'074'400},
        {"2024-13-01T02:00:00.5Z", std::nullopt},
        {"2024-01-01T02:00:00.Z", std::nullopt},
        {"-024-01-01T02:00:00.5Z", std::nullopt},
        {"(CST)", std::nullopt},
        {"yesterday", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases) {
        const auto date = parseMailDate(text);
        EXPECT_EQ(date ? std::optional<std::int64_t>(date->time_since_epoch().count()) : std::nullopt,
                  expected)
            << text;
    }
}

TEST(MessageIdentifiers, AreNormalizedAndListedOnce) {
    EXPECT_THAT(normalizedMessageIdentifier(" <ABC@Host> "), Optional("abc@host"s));
    EXPECT_THAT(normalizedMessageIdentifier("=?utf-8?Q?<A=5Fb@x>?="), Optional("a b@x"s));
    EXPECT_EQ(normalizedMessageIdentifier(" <> "), std::nullopt);
    EXPECT_THAT(normalizedMessageIdentifiers("<A@x> junk <b@x>\n<a@X> <> <open"), ElementsAre("a@x", "b@x"));
    EXPECT_THAT(normalizedMessageIdentifiers(" Bare@X "), ElementsAre("bare@x"));
    EXPECT_THAT(normalizedReferencedMessageIdentifiers("<1@x> <2@x>", "<3@x>"),
                Optional(ElementsAre("1@x", "2@x")));
    EXPECT_THAT(normalizedReferencedMessageIdentifiers("", "<3@x> <4@x>"), Optional(ElementsAre("3@x")));
    EXPECT_EQ(normalizedReferencedMessageIdentifiers("", " "), std::nullopt);
}

TEST(MessageIdentifiers, AddressesAreShownWithWhatThereIs) {
    EXPECT_EQ(formattedAddress(" 张三\n", " z@x "), "张三 <z@x>");
    EXPECT_EQ(formattedAddress("", " z@x "), "z@x");
    EXPECT_EQ(formattedAddress("张三", " "), "张三");
}

TEST(AttachmentNames, AreCleanedByEveryRule) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {" \"report.pdf\"\r\n", "report.pdf"},
        {"=?UTF-8?B?5oql5ZGK?=.pdf", "报告.pdf"},
        {"UTF-8''%E6%96%87.pdf", "文.pdf"},
        {"iso-8859-7''a%20b.pdf", "a b.pdf"},
        {"windows-1252''x.doc", "x.doc"},
        {"koi''a%20b.pdf", "koi''a b.pdf"},
        {"it''s 100%.txt", "it''s 100%.txt"},
        {"a%20b.pdf", "a%20b.pdf"},
        {"<abc@host>report.pdf", "report.pdf"},
        {"<abc@host>  ", ""},
        {"<abc>report.pdf", "<abc>report.pdf"},
        {"report .pdf", "report.pdf"},
        {"a . . b.pdf", "a.b.pdf"},
        {".hidden", "hidden"},
        {"..", ".."},
        {"a\u00A0b\u3000c\td.txt", "a b c d.txt"},
        {"a\\b\\.txt", "ab.txt"},
        {"", ""},
    };
    for (const auto& [name, expected] : cases) EXPECT_EQ(cleanAttachmentName(name), expected) << name;
}

TEST(AttachmentNames, LabelsGoByExtensionThenContentType) {
    EXPECT_EQ(mimeTypeGuess("a.PDF", "text/plain"), "PDF 文档");
    EXPECT_EQ(mimeTypeGuess("a.svg", ""), "图片");
    EXPECT_EQ(mimeTypeGuess("a.7z", ""), "压缩/安装包");
    EXPECT_EQ(mimeTypeGuess("a.bmp", ""), "BMP");
    EXPECT_EQ(mimeTypeGuess("a.xyz", "Application/Octet-Stream"), "XYZ");
    EXPECT_EQ(mimeTypeGuess("a.é1", ""), "É1");
    EXPECT_EQ(mimeTypeGuess("a.xyz", "text/calendar"), "text/calendar");
    EXPECT_EQ(mimeTypeGuess("plain", ""), "附件");
}

TEST(AttachmentNames, CaretJointsSplitOnlyFileNames) {
    EXPECT_THAT(splitCaretJoinedName("a^_b.pdf"), ElementsAre("a^_b.pdf"));
    EXPECT_THAT(splitCaretJoinedName("a.txt^_b.pdf"), ElementsAre("a.txt", "b.pdf"));
    EXPECT_THAT(splitCaretJoinedName("a.txt^_"), ElementsAre("a.txt^_"));
    EXPECT_THAT(splitCaretJoinedName("a"), ElementsAre("a"));
}

TEST(MessageFiles, AreTextBehindTheLengthLine) {
    EXPECT_EQ(decodeEmlx("12\nSubject: 你\n\nx<plist/>"), "Subject: 你\n\nx<plist/>");
    EXPECT_EQ(decodeEmlx("12\ncaf\xE9"), "café");
    EXPECT_EQ(decodeEmlx("no line feed"), "no line feed");
    const testing::TemporaryHome home;
    EXPECT_EQ(readMessagePrefix(home.write("a.emlx", "0123456789"), 4), "0123");
    EXPECT_EQ(readMessagePrefix(home.write("b.emlx", ""), 4), "");
    // Characters of one to four bytes: by the limit, so many bytes are read.
    const std::string content = "a\u00E9\u4E2D\U0001F600\xFF\xFF";
    const std::string path = home.write("c.emlx", content);
    constexpr std::array<std::size_t, 11> sizes = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10};
    for (std::size_t limit = 0; limit < sizes.size(); ++limit)
        EXPECT_EQ(readMessagePrefix(path, static_cast<std::int64_t>(limit)), content.substr(0, sizes[limit]));
    EXPECT_THROW(readMessagePrefix(home.at("missing.emlx"), 4), MessageFileError);
}

} // namespace
} // namespace corvane::mime
