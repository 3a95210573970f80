#include "screens/home/figures/year_series.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(YearBars, HoldEveryYearOfWhichSomethingIsKnown) {
    OrganizeOverview overview;
    overview.tallies["imap://A"] = {{2019, {2, 1}}, {2021, {1, 0}}, {std::nullopt, {1, 0}}};
    const CountByYear all = {{2019, 10}, {2020, 1}, {2022, 4}};
    const CountByAccountAndYear byAccount = {{"imap://A", {{2019, 3}}}, {"imap://B", {{2019, 7}, {2022, 4}}}};
    const std::set<std::string> selected;
    const IndexedYears indexed{all, byAccount, selected};
    EXPECT_EQ(
        screens::yearBars(overview, std::nullopt, {2021}, indexed),
        (std::vector<YearBar>{
            {2019, 1, 1, 8, false}, {2020, 0, 0, 1, false}, {2021, 0, 1, 0, true}, {2022, 0, 0, 4, false}}));
    EXPECT_EQ(screens::yearBars(overview, "imap://A", {}, indexed),
              (std::vector<YearBar>{{2019, 1, 1, 1, false}, {2021, 0, 1, 0, false}}));
}

} // namespace
} // namespace corvane
