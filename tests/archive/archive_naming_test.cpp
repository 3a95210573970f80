#include "archive/archive_naming.h"

#include <chrono>
#include <utility>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "platform/paths.h"
#include "support/repeated_text.h"
#include "support/temporary_home.h"
#include "text/charsets/charset.h"
#include "text/graphemes.h"

namespace corvane::archive {
namespace {

using namespace std::string_literals;
using testing::repeated;

constexpr const char* uuidPattern = "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";

MailMessageRecord mail(std::string_view subject, std::optional<std::int64_t> seconds = 1'600'000'000,
                       std::optional<SharedText> account = "工作") {
    MailMessageRecord message;
    message.subject = subject;
    if (seconds) message.date = Date(std::chrono::seconds(*seconds));
    message.accountName = std::move(account);
    return message;
}

TEST(SafeFileName, ReplacesWhatFileSystemsRefuseAndTrimsTheEnds) {
    const std::pair<std::string, std::string> cases[] = {
        {"a/b:c\\d?e*f\"g<h>i|j", "a-b-c-d-e-f-g-h-i-j"},
        {"../../etc/passwd", "etc-passwd"},
        {". - a b - .", "a b"},
        {"a\0b"s, "ab"},
        {"\u3000a\u3000", "\u3000a\u3000"}, // only "-", "." and the blank are trimmed
        {"inv\u202Efdp.exe", "invfdp.exe"},
        {"\x1B[31m\u200F.hidden\u009B\x07", "[31m.hidden"},
        {"\u2066../\u2069x\n", "x"},
        {"a\xFF\xFE", "a\uFFFD\uFFFD"},
        {"／：", "／："},
    };
    for (const auto& [text, name] : cases) EXPECT_EQ(safeFileName(text), name);
    for (const char* text : {"", "...", "/", " -. "}) {
        EXPECT_THAT(safeFileName(text), ::testing::MatchesRegex(uuidPattern));
        EXPECT_NE(safeFileName(text), safeFileName(text));
    }
}

TEST(SubjectFragment, IsThirtyWholeCharactersOfTheTrimmedSubject) {
    const std::string family = "👨‍👩‍👧‍👦";
    EXPECT_EQ(subjectFragment(mail(" \u3000\n")), "（无主题）");
    EXPECT_EQ(subjectFragment(mail(" a b\n")), "a b");
    EXPECT_EQ(subjectFragment(mail("\u202E\x07 \u200F")), "（无主题）");
    EXPECT_EQ(subjectFragment(mail(repeated("\u200E", 40) + " a\nb")), "ab");
    EXPECT_EQ(subjectFragment(mail(repeated(family, 31))), repeated(family, 30));
    EXPECT_EQ(subjectFragment(mail(repeated("e\u0301", 31))), repeated("e\u0301", 30));
}

TEST(ArchivePaths, AreYearAccountAndStem) {
    const testing::TimeZoneGuard zone("Asia/Shanghai");
    const std::int64_t newYear = 1'577'836'800 - 8 * 3600; // 2020-01-01 00:00 there

    struct {
        MailMessageRecord message;
        std::string_view suffix;
        std::string pattern;
    } const cases[] = {
        {mail("a/b: c"), "", "2020/工作/2020-09-13 a-b- c.eml"},
        {mail("x", newYear), "", "2020/工作/2020-01-01 x.eml"},
        {mail("x", newYear - 1), "", "2019/工作/2019-12-31 x.eml"},
        {mail("x", std::nullopt), "（变体2）", "未知年份/工作/x（变体2）.eml"},
        {mail("..."), "", "2020/工作/2020-09-13.eml"},
        {mail("...", std::nullopt), "", fmt::format("未知年份/工作/{}.eml", uuidPattern)},
        {mail("", std::nullopt), "", "未知年份/工作/（无主题）.eml"},
        {mail("x", 1'600'000'000, std::nullopt), "", fmt::format("2020/{}/2020-09-13 x.eml", uuidPattern)},
        {mail("x", 1'600'000'000, "../.."), "", fmt::format("2020/{}/2020-09-13 x.eml", uuidPattern)},
        {mail("x", 1'600'000'000, "a/../b"), "", "2020/a-..-b/2020-09-13 x.eml"},
    };

    for (const auto& [message, suffix, pattern] : cases) {
        EXPECT_THAT(ArchivePaths().uniqueRelativePath(message, suffix), ::testing::MatchesRegex(pattern));
    }
}

TEST(ArchivePaths, NumberWhatIsInUseByCanonicalEquivalenceAndCase) {
    ArchivePaths paths;
    paths.markUsed("2020/工作/2020-09-13 caf\u00E9.eml");
    paths.markUsed("2020/工作/2020-09-13 x-3.eml");
    const std::pair<std::string, std::string> steps[] = {
        {"cafe\u0301", "2020/工作/2020-09-13 cafe\u0301-2.eml"},
        {"Caf\u00E9", "2020/工作/2020-09-13 Caf\u00E9.eml"},
        {"x", "2020/工作/2020-09-13 x.eml"},
        {"x", "2020/工作/2020-09-13 x-2.eml"},
        {"x", "2020/工作/2020-09-13 x-4.eml"},
        {"x-5", "2020/工作/2020-09-13 x-5.eml"},
        {"x", "2020/工作/2020-09-13 x-6.eml"},
    };
    for (const auto& [subject, path] : steps) EXPECT_EQ(paths.uniqueRelativePath(mail(subject), ""), path);
}

TEST(ArchivePaths, ManyMessagesOfOneNameTakeEachNumberOnce) {
    ArchivePaths paths;
    std::string path;
    for (int i = 0; i < 50'000; ++i) path = paths.uniqueRelativePath(mail("cron"), "");
    EXPECT_EQ(path, "2020/工作/2020-09-13 cron-50000.eml");
}

TEST(ArchivePaths, KeepEachComponentWithin255BytesAndLoseOnlyWhatIsNeeded) {
    const std::string family = "👨‍👩‍👧‍👦"; // 25 bytes
    const std::string wide = "a" + repeated("\u0301", 120); // 241 bytes, one character

    struct {
        const char* what;
        MailMessageRecord message;
        std::string_view suffix;
        std::string first;
        std::string second;
    } const cases[] = {
        {"fits to the byte", mail(repeated(family, 9) + "abcdefghi" + "jklmnop", std::nullopt), "",
         repeated(family, 9) + "abcdefghijklmnop", repeated(family, 9) + "abcdefghijklmnop-2"},
        {"whole characters go", mail(repeated(family, 11), std::nullopt), "", repeated(family, 10),
         repeated(family, 9) + "-2"},
        {"the suffix stays", mail(repeated(family, 30)), "（变体12）",
         "2020-09-13 " + repeated(family, 9) + "（变体12）",
         "2020-09-13 " + repeated(family, 8) + "（变体12）-2"},
        {"a character that is too long alone", mail(wide), "", "2020-09-13", "2020-09-13-2"},
    };

    for (const auto& [what, message, suffix, first, second] : cases) {
        ArchivePaths paths;
        const std::string one = paths.uniqueRelativePath(message, suffix);
        const std::string two = paths.uniqueRelativePath(message, suffix);
        EXPECT_LE(platform::lastPathComponent(one).size(), maximumNameBytes) << what;
        EXPECT_LE(platform::lastPathComponent(two).size(), maximumNameBytes) << what;
        EXPECT_EQ(platform::lastPathComponent(one), first + ".eml") << what;
        EXPECT_EQ(platform::lastPathComponent(two), second + ".eml") << what;
    }
    const auto folderOf = [](const std::string& account) {
        const std::string path = ArchivePaths().uniqueRelativePath(mail("x", 0, SharedText(account)), "");
        return path.substr(5, path.rfind('/') - 5);
    };
    EXPECT_EQ(folderOf(repeated("好", 85)), repeated("好", 85));
    EXPECT_EQ(folderOf(repeated("好", 86)), repeated("好", 85));
    EXPECT_EQ(folderOf(repeated("好", 84) + "ab. c"), repeated("好", 84) + "ab");
    EXPECT_THAT(folderOf("a" + repeated("\u0301", 200)), ::testing::MatchesRegex(uuidPattern));
}

} // namespace
} // namespace corvane::archive
