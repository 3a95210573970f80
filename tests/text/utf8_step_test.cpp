#include "text/charsets/utf8_step.h"

#include <utility>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

TEST(Utf8Step, ACharacterCutAtTheEndIsLeftOut) {
    const std::pair<std::string_view, std::size_t> cases[] = {
        {"", 0},    {"a", 1},    {"a\xC3", 1}, {"aé", 3},    {"a\xE6\x96", 1}, {"a\xF0\x9F\x98", 1},
        {"a😀", 5}, {"\xF0", 0}, {"\x80", 1},  {"a\xFC", 2}, {"\xE0\x80", 2},
    };
    for (const auto& [text, length] : cases) EXPECT_EQ(withoutCutCharacter(text).size(), length) << text;
}

TEST(Utf8Step, OnlyScalarsAreAppended) {
    std::string text;
    for (const UChar32 scalar : {0x41, 0xE9, 0x6587, 0x1F600, 0xD800, 0x110000, -1})
        appendScalar(text, scalar);
    EXPECT_EQ(text, "Aé文😀\uFFFD\uFFFD\uFFFD");
}

} // namespace
} // namespace corvane::text
