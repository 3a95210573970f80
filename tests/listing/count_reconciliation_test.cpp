#include "listing/count_reconciliation.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(Reconciliation, NamesOnlyYearsThatDifferInEitherDirection) {
    const CountByYear indexed = {{2023, 3}, {2024, 5}};
    const CountByAccountAndYear byAccount = {{"imap://A", {{2023, 3}, {2024, 4}}}, {"imap://B", {{2024, 1}}}};
    const auto year = [](std::int64_t number, std::int64_t count) {
        YearStat stat;
        stat.year = number;
        stat.messageCount = count;
        return stat;
    };
    const auto group = [](const std::string& account, std::vector<YearStat> years) {
        return AccountYearStatGroup{account, "", std::move(years), 0, 0};
    };
    const std::vector<YearStat> downloaded = {year(2023, 3), year(2024, 2), year(2019, 1)};
    const auto lines =
        reconciliationLines({indexed, byAccount},
                            {downloaded,
                             {group("imap://A", {year(2023, 3), year(2024, 2)}), group("", {year(2019, 1)})},
                             {group("imap://A", {year(2024, 1)})}});
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "[reconcile] indexedTotal=8 downloadedTotal(yearStats)=6 indexedOnly=2",
                         "[reconcile] [2019] indexed=0 downloaded=1 candidate=0",
                         "[reconcile] imap://A[2024] indexed=4 downloaded=2 candidate=1",
                         "[reconcile] imap://B[2024] indexed=1 downloaded=0 candidate=0"}));
}

} // namespace
} // namespace corvane
