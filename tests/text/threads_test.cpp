// What ICU gives us is shared by threads or kept for each: the same on many at a time as on one.
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "text/charsets/charset.h"
#include "text/collation.h"
#include "text/dates/date_pattern.h"
#include "text/graphemes.h"
#include "text/regex.h"

namespace corvane::text {
namespace {

TEST(Threads, EachGetsItsOwnResults) {
    const DatePattern pattern("en_US_POSIX", "yyyy-MM-dd HH:mm:ss Z");
    const Regex number(R"(\d+)");
    const auto work = [&](int thread) {
        for (int round = 0; round < 300; ++round) {
            const std::chrono::sys_seconds date(std::chrono::hours(24 * round + thread));
            ASSERT_EQ(pattern.parse(pattern.format(date)), date);
            const std::string value = std::to_string(thread * 1'000 + round);
            const std::string text = "第" + value + "封";
            ASSERT_EQ(number.firstMatch(text).value().group(0, text), value);
            ASSERT_EQ(fromGb18030("\xC4\xE3" + value), "你" + value);
            ASSERT_LT(naturalCompare("附件" + value, "附件1" + value), 0);
            ASSERT_EQ(graphemeCount("👨‍👩‍👧‍👦" + value), 1 + value.size());
        }
    };
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) threads.emplace_back(work, thread);
}

} // namespace
} // namespace corvane::text
