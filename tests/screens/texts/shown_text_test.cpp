#include "screens/texts/shown_text.h"

#include <string>

#include "screens/texts/attachment_symbol.h"

namespace corvane::screens {
namespace {

TEST(ShownText, HoldsNothingThatActsOnItsNeighbours) {
    const struct {
        std::string text;
        const char* line;
    } cases[] = {
        {"", ""},
        {"a\r\n\t b", "a b"},
        {std::string("a\0b", 3), "ab"},
        {"x\xE2\x80\xAE"
         "gpj.exe\xE2\x81\xA6 y\xE2\x81\xA9\xD8\x9C",
         "xgpj.exe y"},
        {"\xE2\x80\xA8"
         "a\xC2\x85"
         "b\xE2\x80\xA9",
         "a b"},
        {"<b>粗</b> &amp; <img src=x>", "<b>粗</b> &amp; <img src=x>"},
        {"\x1B[31mred\x7F\xC2\x9B", "[31mred"},
        {"\xEF\xBB\xBF标题", "标题"},
        {"坏\xFF字节", "坏\xEF\xBF\xBD字节"},
        {"👩‍👩‍👧", "👩‍👩‍👧"},
    };

    for (const auto& [text, line] : cases) EXPECT_EQ(shownLine(text).toStdString(), line);
    EXPECT_EQ(shownText("a\r\n\nb\tc", 50).toStdString(), "a\n\nb c");
}

TEST(ShownText, IsCutBetweenCharactersAndSaysSo) {
    const QString ellipsis(QChar(0x2026));
    EXPECT_EQ(shownLine("abcdef", 6), QStringLiteral("abcdef"));
    EXPECT_EQ(shownLine("abcdefg", 6), QStringLiteral("abcdef") + ellipsis);
    // 😀 takes two units: half of it is never shown.
    EXPECT_EQ(shownLine("ab😀😀", 3), QStringLiteral("ab") + ellipsis);
    for (int shift = 0; shift < 4; ++shift) {
        std::string giant(static_cast<std::size_t>(shift), 'x');
        while (giant.size() < 100'000) giant += "邮件😀";
        const QString line = shownLine(giant);
        EXPECT_LE(line.size(), rowTextLimit + 1);
        EXPECT_TRUE(line.endsWith(ellipsis));
        EXPECT_FALSE(line.contains(QChar::ReplacementCharacter));
    }
    // What is taken out can't hide that there is more.
    EXPECT_EQ(shownLine(std::string(100'000, '\x01') + "end"), ellipsis);
}

TEST(ShownText, SendersAreNamesUnlessThereIsOnlyAnAddress) {
    const struct {
        const char* sender;
        const char* name;
    } cases[] = {
        {"周明哲 <z@a.example>", "周明哲"},
        {"\"Zhou, M\" <z@a.example>", "Zhou, M"},
        {"<z@a.example>", "<z@a.example>"},
        {"z@a.example", "z@a.example"},
        {"a < b", "a < b"},
        {"\"\" <z@a.example>", "\"\" <z@a.example>"},
        {"发件人未知", "发件人未知"},
    };

    for (const auto& [sender, name] : cases) EXPECT_EQ(shownSender(sender).toStdString(), name);
}

TEST(ShownText, AttachmentsHaveTheSymbolOfTheirLastExtension) {
    EXPECT_EQ(attachmentSymbol("图.PDF"), "doc.richtext");
    EXPECT_EQ(attachmentSymbol("a.pdf.exe"), "shippingbox");
    EXPECT_EQ(attachmentSymbol("备份.tar.gz"), "doc.zipper");
    for (const char* name : {"", "无扩展名", ".pdfx", "a.", "a.unknown"})
        EXPECT_EQ(attachmentSymbol(name), "doc");
}

} // namespace
} // namespace corvane::screens
