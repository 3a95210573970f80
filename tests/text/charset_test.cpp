#include "text/charsets/charset.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

std::string utf8(char32_t scalar) {
    std::string bytes;
    if (scalar < 0x80) {
        bytes = {static_cast<char>(scalar)};
    } else if (scalar < 0x800) {
        bytes = {static_cast<char>(0xC0 | scalar >> 6), static_cast<char>(0x80 | (scalar & 0x3F))};
    } else if (scalar < 0x10000) {
        bytes = {static_cast<char>(0xE0 | scalar >> 12), static_cast<char>(0x80 | (scalar >> 6 & 0x3F)),
                 static_cast<char>(0x80 | (scalar & 0x3F))};
    } else {
        bytes = {static_cast<char>(0xF0 | scalar >> 18), static_cast<char>(0x80 | (scalar >> 12 & 0x3F)),
                 static_cast<char>(0x80 | (scalar >> 6 & 0x3F)), static_cast<char>(0x80 | (scalar & 0x3F))};
    }
    return bytes;
}

TEST(Charset, Utf8IsWellFormedForScalarsOnly) {
    for (char32_t code = 0; code < 0x120000; ++code) {
        const bool isScalar = code < 0x110000 && (code < 0xD800 || code > 0xDFFF);
        ASSERT_EQ(isValidUtf8(utf8(code)), isScalar) << static_cast<unsigned>(code);
    }
    for (const std::string_view overlong : {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF"})
        EXPECT_FALSE(isValidUtf8(overlong));
}

TEST(Charset, Utf8IsCheckedAtEveryOffsetOfAWord) {
    for (std::size_t length = 1; length <= 40; ++length) {
        for (std::size_t position = 0; position < length; ++position) {
            std::string text(length, 'a');
            text[position] = '\x80';
            EXPECT_FALSE(isValidUtf8(text));
            text[position] = '\xE4';
            EXPECT_FALSE(isValidUtf8(text));
            text.replace(position, 1, "文");
            EXPECT_TRUE(isValidUtf8(text));
        }
    }
}

// The examples of the Unicode standard, chapter 3.9.
TEST(Charset, RepairsEachMaximalSubpartOnce) {
    const std::string r = "\uFFFD";
    const std::pair<std::string_view, std::string> cases[] = {
        {"", ""},
        {"正文", "正文"},
        {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", r + r + r + r + r + r + r + r + "A"},
        {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", r + r + r + r + r + r + r + r + "A"},
        {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", r + r + r + r + r + "A" + r + r + "B"},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", r + r + r + r + "A"},
        {"文\xE6\x96", "文" + r},
    };
    for (const auto& [bytes, repaired] : cases) {
        EXPECT_EQ(repairedUtf8(bytes), repaired);
        EXPECT_TRUE(isValidUtf8(repairedUtf8(bytes)));
    }
}

TEST(Charset, Latin1KeepsEveryByte) {
    std::string bytes;
    for (int value = 0; value < 256; ++value) bytes.push_back(static_cast<char>(value));
    EXPECT_TRUE(isValidUtf8(fromLatin1(bytes)));
    EXPECT_EQ(toLatin1(fromLatin1(bytes)), bytes);
    EXPECT_EQ(fromLatin1("caf\xE9"), "café");
    for (const std::string_view beyond : {"\u0100", "aé文", "\xE9", "é\xC3"})
        EXPECT_EQ(toLatin1(beyond), std::nullopt);
}

TEST(Charset, Gb18030TakesItsOlderFormsAndRefusesDamage) {
    const std::pair<std::string_view, std::optional<std::string>> cases[] = {
        {"", ""},
        {"plain", "plain"},
        {"\xC4\xE3\xBA\xC3", "你好"},
        {"\xE9\x46 a\xA2\xE3", "镕 a€"},
        {"\x94\x39\xFC\x36", "😀"},
        {"\x81\x30\x81\x30", "\u0080"},
        {"\xC4", std::nullopt},
        {"\xC4\xE3\xBA", std::nullopt},
        {"\xC4\x20", std::nullopt},
        {"a\xFF", std::nullopt},
        {"\x94\x39\xFC", std::nullopt},
        {"\x94\x39\xFC\x41", std::nullopt},
        {"\xFE\x39\xFE\x39", std::nullopt},
    };
    // Each case after each other one: a failed conversion leaves nothing behind.
    for (const auto& [ignored, unused] : cases) {
        for (const auto& [bytes, text] : cases) {
            fromGb18030(ignored);
            EXPECT_EQ(fromGb18030(bytes), text);
        }
    }
}

} // namespace
} // namespace corvane::text
