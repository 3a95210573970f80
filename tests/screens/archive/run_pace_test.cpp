#include "screens/archive/run/run_pace.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

RunPace::Moment at(int millisecondsSince) {
    return RunPace::Moment(milliseconds(millisecondsSince));
}

TEST(RunPaces, NothingIsForecastInTheFirstThreeSeconds) {
    RunPace pace;
    pace.start(at(0));
    EXPECT_EQ(pace.rate(), std::nullopt);
    pace.report(0, at(0));
    pace.report(0, at(500));
    EXPECT_EQ(pace.rate(), std::nullopt) << "nothing is done yet";
    pace.report(40, at(1000));
    EXPECT_DOUBLE_EQ(pace.rate().value(), 40);
    EXPECT_EQ(pace.timeLeft(400, at(2999)), std::nullopt);
    EXPECT_EQ(pace.timeLeft(400, at(3000)), seconds(7));
    EXPECT_EQ(pace.elapsed(at(3999)), seconds(3));
}

TEST(RunPaces, OnlyTheLastTenSecondsCount) {
    RunPace pace;
    pace.start(at(0));
    for (int second = 0; second <= 20; ++second) pace.report(second * 100, at(second * 1000));
    for (int second = 21; second <= 40; ++second) pace.report(2000 + (second - 20), at(second * 1000));
    EXPECT_NEAR(pace.rate().value(), 1, 0.01);
}

TEST(RunPaces, ASlowPlaceAndAStandstillAreTold) {
    RunPace pace;
    pace.start(at(0));
    pace.report(0, at(0));
    pace.report(1, at(25'000));
    EXPECT_DOUBLE_EQ(pace.rate().value(), 0.04) << "reports further apart than the window";
    RunPace standing;
    standing.start(at(0));
    standing.report(5, at(0));
    standing.report(5, at(8000));
    EXPECT_EQ(standing.timeLeft(10, at(9000)), std::nullopt);
    EXPECT_EQ(screens::shownRate(standing.rate()), QStringLiteral("0 封 / 秒"));
}

TEST(RunPaces, TheForecastNeverReachesZeroBeforeTheEnd) {
    RunPace pace;
    pace.start(at(0));
    pace.report(0, at(0));
    pace.report(99, at(9900));
    EXPECT_EQ(pace.timeLeft(100, at(60'000)), seconds(1));
}

TEST(RunPaces, AreWrittenAsPeopleSayThem) {
    EXPECT_EQ(screens::shownRate(std::nullopt), QStringLiteral("—"));
    EXPECT_EQ(screens::shownRate(38.2), QStringLiteral("38 封 / 秒"));
    EXPECT_EQ(screens::shownRate(1234.0), QStringLiteral("1,234 封 / 秒"));
    EXPECT_EQ(screens::shownRate(0.2), QStringLiteral("12 封 / 分钟"));
    EXPECT_EQ(screens::shownTimeLeft(std::nullopt), QStringLiteral("—"));
    EXPECT_EQ(screens::shownTimeLeft(seconds(12)), QStringLiteral("约 12 秒"));
    EXPECT_EQ(screens::shownTimeLeft(seconds(89)), QStringLiteral("约 1 分钟"));
    EXPECT_EQ(screens::shownTimeLeft(seconds(7200)), QStringLiteral("约 2 小时"));
    EXPECT_EQ(screens::shownTimeLeft(seconds(7380)), QStringLiteral("约 2 小时 3 分钟"));
}

} // namespace
} // namespace corvane
