#include "mailstore/index/candidate_pieces.h"

#include <algorithm>
#include <limits>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailstore/sample_mail_store.h"
#include "mailstore/sqlite/json_rows.h"
#include "mailstore/sqlite/mail_index_query_error.h"

namespace corvane::mailstore {
namespace {

using std::chrono::milliseconds;
using ::testing::IsEmpty;
using testing::startOf2024;
using testing::subjectsOf;

// In whatever way the ranges are answered, they cover all rows once, and end.
TEST(RowIDRanges, CoverAllRowsOnce) {
    constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
    constexpr auto highest = std::numeric_limits<std::int64_t>::max();
    std::mt19937 random(3);
    for (const RowIDRange& rows : std::vector<RowIDRange>{{0, 0},
                                                          {5, 4100},
                                                          {-3, 1'000'000},
                                                          {lowest, highest},
                                                          {highest - 9, highest},
                                                          {lowest, lowest}}) {
        for (const unsigned lanes : {1U, 4U}) {
            RowIDRanges ranges(rows, lanes);
            std::vector<RowIDRange> got;
            int halvings = 0;
            while (const auto range = ranges.next()) {
                ASSERT_LE(range->first, range->last);
                if (halvings < 40 && random() % 3 == 0 && ranges.halve(*range)) {
                    ++halvings;
                    continue;
                }
                ranges.answered(*range, milliseconds(got.size() < 200 ? random() % 2 * 1000 : 0));
                got.push_back(*range);
                ASSERT_LT(got.size(), 3000U);
            }
            std::ranges::sort(got, {}, &RowIDRange::first);
            EXPECT_EQ(got.front().first, rows.first);
            EXPECT_EQ(got.back().last, rows.last);
            for (std::size_t i = 1; i < got.size(); ++i) ASSERT_EQ(got[i - 1].last + 1, got[i].first);
        }
    }
}

struct SpreadStore : testing::ScannedStore {
    // Rows over several ranges, with many of one date, and dates that aren't whole numbers.
    SpreadStore() {
        std::mt19937 random(7);
        execute("BEGIN");
        for (std::int64_t i = 1; i <= 600; ++i) {
            const std::int64_t row = i * 211;
            add({.rowID = row,
                 .messageID = i % 50,
                 .subject = std::to_string(row),
                 .recipients = {"b@x", "a@x"},
                 .date = startOf2024 + static_cast<std::int64_t>(random() % 40),
                 .header = i < 100 ? fmt::format("<{}@x>", i % 50) : ""});
        }
        int rest = 0;
        for (const char* odd : {"1704067210.5", "1704067210.25", "'text'", "'texu'", "9e15"})
            execute(fmt::format("UPDATE messages SET date_received = {} WHERE rowid % 7 = {}", odd, rest++));
        execute("COMMIT");
        close();
    }
};

TEST(CandidatePieces, JoinedAreTheWholeQuery) {
    SpreadStore store;
    ShellResult whole = runShell(store.context, {.databasePath = store.indexPath(),
                                                 .sql = candidateQuery({}, true),
                                                 .timeLimit = std::chrono::minutes(1),
                                                 .format = ShellQuery::Format::json});
    std::vector<std::string> expected;
    readJsonRows(whole.output.value().path(),
                 [&](JsonRow& row) { expected.emplace_back(row.text("subject").value()); });
    ASSERT_EQ(expected.size(), 600U);
    EXPECT_EQ(subjectsOf(store.scan()), expected);
}

// The shell answers a question for a few rows only: for more it begins, and never ends.
TEST(CandidatePieces, AreHalvedUntilTheyAreHadInTheirTime) {
    SpreadStore store;
    const auto expected = subjectsOf(store.scan());
    store.context.queryTimeLimit = milliseconds(400);
    store.platform.setShellScript(R"sh(sql=$(cat)
first=$(printf %s "$sql" | sed -n 's/.*m.ROWID >= \([0-9]*\) AND.*/\1/p')
last=$(printf %s "$sql" | sed -n 's/.*m.ROWID <= \([0-9]*\)$/\1/p')
if [ -n "$first" ] && [ $((last - first)) -gt 9000 ]; then echo '['; exec sleep 60; fi
printf %s "$sql" | /usr/bin/sqlite3 "$@")sh");
    EXPECT_EQ(subjectsOf(store.scan()), expected);
    store.platform.setShellScript("case \"$*\" in *-json*) echo '['; exec sleep 60;; *) exit 1;; esac");
    EXPECT_THROW((void)store.scan(), MailIndexQueryError);
    EXPECT_THAT(store.leftovers(), IsEmpty());
}

TEST(CandidatePieces, TheColumnIsNotMissingWhenTheIndexFailsOnce) {
    testing::ScannedStore store;
    store.add({.rowID = 1, .messageID = 5, .header = "<a@x>"});
    store.close();
    const std::string first = store.home.at("asked-once");
    store.platform.setShellScript(
        fmt::format("if [ \"$2\" = -json ] && [ ! -e '{0}' ]; then\n  : > '{0}'; exit 5\n"
                    "fi\nexec /usr/bin/sqlite3 \"$@\"",
                    first));
    const auto records = testing::recordsOf(store.scan());
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(*records[0].messageIdentifier, "a@x");
}

} // namespace
} // namespace corvane::mailstore
