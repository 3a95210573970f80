#include "text/position_table.h"

#include <random>
#include <string>
#include <unordered_map>

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(PositionTable, AgreesWithAMapThroughGrowth) {
    std::mt19937 random(7);
    PositionTable table;
    std::vector<std::string> texts;
    std::unordered_map<std::string, std::size_t> expected;
    const auto textAt = [&](PositionTable::Position position) -> std::string_view { return texts[position]; };
    EXPECT_FALSE(table.position("", textAt));
    for (int step = 0; step < 20000; ++step) {
        const std::string text = std::to_string(random() % 9000);
        texts.push_back(text);
        const auto [known, isNew] = expected.try_emplace(text, texts.size() - 1);
        const auto found = table.insert(text, static_cast<PositionTable::Position>(texts.size() - 1), textAt);
        ASSERT_EQ(found, std::pair(static_cast<PositionTable::Position>(known->second), isNew));
    }
    EXPECT_EQ(table.size(), expected.size());
    for (int number = 0; number < 10000; ++number) {
        const auto known = expected.find(std::to_string(number));
        const auto found = table.position(std::to_string(number), textAt);
        ASSERT_EQ(found.has_value(), known != expected.end());
        if (found) {
            ASSERT_EQ(*found, known->second);
        }
    }
}

} // namespace
} // namespace corvane
