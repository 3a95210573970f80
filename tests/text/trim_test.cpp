#include "text/trim.h"

#include <set>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

TEST(Trim, SetsHoldTheSpaceSeparatorsAndNothingElse) {
    std::set<char32_t> blanks{'\t', ' ', 0xA0, 0x1680, 0x202F, 0x205F, 0x3000};
    for (char32_t space = 0x2000; space <= 0x200A; ++space) blanks.insert(space);
    std::set<char32_t> whitespace = blanks;
    whitespace.insert({'\n', '\v', '\f', '\r', 0x85, 0x2028, 0x2029});
    for (char32_t scalar = 0; scalar <= 0x10FFFF; ++scalar) {
        ASSERT_EQ(isBlank(scalar), blanks.contains(scalar)) << static_cast<unsigned>(scalar);
        ASSERT_EQ(isWhitespaceOrNewline(scalar), whitespace.contains(scalar))
            << static_cast<unsigned>(scalar);
    }
}

TEST(Trim, TakesFromBothEndsOnly) {
    struct Case {
        std::string_view text;
        std::string_view withoutBlanks;
        std::string_view withoutWhitespace;
    };

    const Case cases[] = {
        {"", "", ""},
        {" \t ", "", ""},
        {"a b", "a b", "a b"},
        {"\n a \r\n", "\n a \r\n", "a"},
        {"\u3000主题\u00A0", "主题", "主题"},
        {"\u2029\u0085 x\u2028", "\u2029\u0085 x\u2028", "x"},
        // Bytes of a blank that is cut or stray are text.
        {"\xA0 x \xE3\x80", "\xA0 x \xE3\x80", "\xA0 x \xE3\x80"},
        {" \xC2\xA0\xA0 ", "\xA0", "\xA0"},
        {" \x80\xE3\x80\x80", "\x80", "\x80"},
        {std::string_view(" \0 ", 3), std::string_view("\0", 1), std::string_view("\0", 1)},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(trimBlanks(each.text), each.withoutBlanks) << each.text;
        EXPECT_EQ(trimWhitespaceAndNewlines(each.text), each.withoutWhitespace) << each.text;
    }
    EXPECT_EQ(trimCharacters("--. a.b .-", "-. "), "a.b");
    EXPECT_EQ(trimCharacters("...", "-. "), "");
    EXPECT_EQ(trimCharacters("\u00A0x", " "), "\u00A0x");
}

} // namespace
} // namespace corvane::text
