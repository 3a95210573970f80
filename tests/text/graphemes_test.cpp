#include "text/graphemes.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace corvane::text {
namespace {

// Texts with their clusters.
const std::vector<std::vector<std::string>> clusteredTexts = {
    {},
    {"a", "b"},
    {"\r\n", "\r", "a", "\n", "\n"},
    {"a", "e\u0301", "x"},
    {"e\u0301\u0323\u0308", "f"},
    {"\r", "\u0301"},
    {"你", "好", "a"},
    {"👨‍👩‍👧‍👦", "👍🏽", "!"},
    {"🇨🇳", "🇫🇷", "🇩"},
    {"한", "\u1112\u1161\u11AB", "z"},
    {"R", "e", ":", " ", "#️⃣", "1️⃣"},
    {"a", "\xFF", "b", "\xE4\xBD", "c"},
};

std::string joined(const std::vector<std::string>& clusters, std::size_t count) {
    std::string text;
    for (std::size_t index = 0; index < std::min(count, clusters.size()); ++index) text += clusters[index];
    return text;
}

TEST(Graphemes, CountAndCutByWholeClusters) {
    for (const auto& clusters : clusteredTexts) {
        const std::string text = joined(clusters, clusters.size());
        EXPECT_EQ(graphemeCount(text), clusters.size()) << text;
        for (std::size_t count = 0; count <= clusters.size() + 1; ++count)
            EXPECT_EQ(graphemePrefix(text, count), joined(clusters, count)) << text;
        for (std::size_t count = 0; count <= clusters.size(); ++count) {
            const std::string front = joined(clusters, clusters.size() - count);
            EXPECT_EQ(graphemeSuffix(text, count), std::string_view(text).substr(front.size())) << text;
        }
    }
}

TEST(Graphemes, ByteLimitKeepsTheLongestWholePrefix) {
    for (const auto& clusters : clusteredTexts) {
        const std::string text = joined(clusters, clusters.size());
        for (std::size_t limit = 0; limit <= text.size() + 1; ++limit) {
            std::size_t fitting = 0;
            while (fitting < clusters.size() && joined(clusters, fitting + 1).size() <= limit) ++fitting;
            EXPECT_EQ(graphemePrefixWithinBytes(text, limit), joined(clusters, fitting)) << text << limit;
        }
    }
}

TEST(Graphemes, OneEndlessClusterIsLeftOutWhole) {
    std::string text = "abc";
    for (int mark = 0; mark < 200'000; ++mark) text += "\u0301";
    EXPECT_EQ(graphemePrefixWithinBytes(text, 255), "ab");
    EXPECT_EQ(graphemePrefix(text, 2), "ab");
    EXPECT_EQ(graphemeCount(text), 3U);
}

} // namespace
} // namespace corvane::text
