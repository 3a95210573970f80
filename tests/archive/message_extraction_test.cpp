#include "archive/message_extraction.h"

#include <gtest/gtest.h>

namespace corvane::archive {
namespace {

using namespace std::string_literals;

TEST(MessageData, CutsByTheCountAndGivesNothingWithoutOne) {
    struct {
        std::string file;
        std::string message;
    } const cases[] = {
        {"4\nabcd<plist>", "abcd"},
        {"4   \r\nab\r\n<plist>", "ab\r\n"},
        {"\t\u3000+4\u2028\nabcd!", "abcd"},
        {"0\n<plist>", ""},
        {"-0\nabc", ""},
        {"0\n", ""},
        {"9\nabc", "abc"},
        {"9223372036854775807\nabc", "abc"},
        {"00003\nabcd", "abc"},
        {"3\n\n\0a"s, "\n\0a"s},
        {"3\n\xFF\xFE\x00"s, "\xFF\xFE\x00"s},
    };

    for (const auto& [file, message] : cases) {
        const auto got = messageData(file);
        ASSERT_TRUE(got) << file;
        EXPECT_EQ(*got, message) << file;
    }
    for (const char* refused : {"-1\nabc", "9223372036854775808\nabc", "+-3\nabc", "3 3\nabc", "0x3\nabc",
                                "３\nabc", "3\xFF\nabc", "3", "", "\nabc", " \nabc", "3a\nabc"})
        EXPECT_FALSE(messageData(refused)) << refused;
}

TEST(BodyStartIndex, IsWhereNothingIsAHeaderAnyMore) {
    struct {
        std::string message;
        std::size_t start;
    } const cases[] = {
        {"", 0},
        {"x", 0},
        {"no blank line\n", 0},
        {"\nbody", 1},
        {"\r\n\r\n", 2},
        {"a: b\n\nbody\n\n", 6},
        {"a: b\r\n\r\nbody\n\n", 8},
        {"a:\r\n\nbody", 5},
        {"a:\n\r\nbody\r\n\r\nend", 5},
        {"a:\r\rbody\nend\n", 4},
        {"a:\r\r\nb\r\r\n\r\r\nbody", 5}, // rather too early than too late
        {"a:\n \t\nbody\n\nend", 6},
        {"a:\n\n", 4},
        {"From x\na : b\n c\n\nbody", 17},
        {"a: b\ntext\n\nbody", 5},
        {"a: b\n\f\ntext\n\nbody", 5},
        {" a: b\n\nbody", 0},
        {"a\n\nbody", 0},
    };

    for (const auto& [message, start] : cases) EXPECT_EQ(bodyStartIndex(message), start) << message;
}

TEST(IsWholeMessage, HasEveryByteOfTheCountAndOneThatIsNotZero) {
    struct {
        std::string file;
        bool isWhole;
    } const cases[] = {
        {"3\nabc<plist>", true}, {"3 \r\nabc", true},          {"4\nabc", false},   {"250000\nabc", false},
        {"0\n<plist>", false},   {"3\n\0\0\0<plist>"s, false}, {"3\n\0a\0"s, true},
    };

    for (const auto& [file, isWhole] : cases)
        EXPECT_EQ(isWholeMessage(file, *messageData(file)), isWhole) << file;
}

std::vector<std::string> largestOfGroups(const std::vector<std::string>& messages) {
    std::vector<MessageBytes> copies;
    for (const std::string& message : messages) {
        copies.push_back(*MessageBytes::fromEmlx(std::to_string(message.size()) + "\n" + message));
    }
    std::vector<std::string> largest;
    for (const BodyGroup& group : groupByBody(copies)) largest.emplace_back(copies[group.largest].bytes);
    return largest;
}

TEST(GroupByBody, ComparesAllBytesOfTheBodyAndKeepsTheLargestCopy) {
    const std::string start(20'000, 'b');

    struct {
        const char* what;
        std::vector<std::string> copies;
        std::vector<std::string> largest;
    } const cases[] = {
        {"one copy", {"a: b\n\nx"}, {"a: b\n\nx"}},
        {"headers play no part", {"a: b\n\nx", "a: bcd\n\nx", "c: de\r\n\r\nx"}, {"c: de\r\n\r\nx"}},
        {"the earliest of equals stays", {"a: 1\n\nx", "a: 2\n\nx"}, {"a: 1\n\nx"}},
        {"order of first appearance",
         {"h:\n\nx", "h:\n\ny", "h: long\n\nx", "h:\n\nz"},
         {"h: long\n\nx", "h:\n\ny", "h:\n\nz"}},
        {"another length",
         {"\n\n" + start + "1", "\n\n" + start + "12"},
         {"\n\n" + start + "1", "\n\n" + start + "12"}},
        {"a difference at the last byte",
         {"\n\n" + start + "1", "\n\n" + start + "2"},
         {"\n\n" + start + "1", "\n\n" + start + "2"}},
        {"without a blank line all of it counts", {"abc", "abd", "abc"}, {"abc", "abd"}},
        {"a blank line of another ending than the header's",
         {"a: b\n\r\nx\r\n\r\nend", "a: b\n\r\ny\r\n\r\nend"},
         {"a: b\n\r\nx\r\n\r\nend", "a: b\n\r\ny\r\n\r\nend"}},
        {"lines that end in CR",
         {"a: 1\r\rx\r", "a: 22\r\rx\r", "a: 1\r\ry\r"},
         {"a: 22\r\rx\r", "a: 1\r\ry\r"}},
    };

    for (const auto& [what, copies, largest] : cases) EXPECT_EQ(largestOfGroups(copies), largest) << what;
}

} // namespace
} // namespace corvane::archive
