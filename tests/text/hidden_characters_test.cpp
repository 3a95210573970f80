#include "text/hidden_characters.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "text/charsets/utf8_step.h"

namespace corvane::text {
namespace {

using namespace std::string_literals;

TEST(HiddenCharacters, AreTheControlsAndTheMarksOfDirectionAndNoOthers) {
    std::string found;
    for (std::int32_t scalar = 0; scalar <= 0x10FFFF; ++scalar) {
        if (scalar >= 0xD800 && scalar < 0xE000) continue;
        std::string character;
        appendScalar(character, scalar);
        const bool isHidden = isHiddenCharacter(static_cast<char32_t>(scalar));
        EXPECT_EQ(withoutHiddenCharacters("a" + character + "b"), isHidden ? "ab" : "a" + character + "b");
        if (isHidden && scalar >= 0xA0) found += character;
    }
    EXPECT_EQ(found, "\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069");
}

TEST(HiddenCharacters, AreSignsForPeopleAndEscapesInJson) {
    const struct {
        std::string text;
        const char* line;
        const char* lines;
    } cases[] = {
        {"", "", ""},
        {"邮件 👩‍👩‍👧 “a” é\u00A0", "邮件 👩‍👩‍👧 “a” é\u00A0",
         "邮件 👩‍👩‍👧 “a” é\u00A0"},
        {"\x1B]0;owned\x07", "␛]0;owned␇", "␛]0;owned␇"},
        {"inv\u202Efdp.exe\u009B", "inv<U+202E>fdp.exe<U+009B>", "inv<U+202E>fdp.exe<U+009B>"},
        {"a\0b\x7F"s, "a␀b␡", "a␀b␡"},
        {"a\r\nb\tc\rd\n", "a␍␊b␉c␍d␊", "a\nb    c␍d\n"},
        {"bad\xFF\xC2", "bad\uFFFD\uFFFD", "bad\uFFFD\uFFFD"},
    };

    for (const auto& [text, line, lines] : cases) {
        EXPECT_EQ(withVisibleSigns(text), line);
        EXPECT_EQ(linesWithVisibleSigns(text), lines);
    }
    EXPECT_EQ(withHiddenEscaped("{\n\t\"a\": \"x\u009B\u202Ey\x7F“é”\"\r\n}"),
              "{\n\t\"a\": \"x\\u009B\\u202Ey\\u007F“é”\"\r\n}");
}

} // namespace
} // namespace corvane::text
