#include "text/dates/date_pattern.h"

#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "support/temporary_home.h"

namespace corvane::text {
namespace {

using corvane::testing::TimeZoneGuard;
using std::chrono::sys_seconds;
using namespace std::chrono_literals;

constexpr sys_seconds newYearUtc = std::chrono::sys_days(std::chrono::year(2024) / 1 / 1);

std::optional<sys_seconds> parse(std::string_view pattern, std::string_view text) {
    return DatePattern("en_US_POSIX", pattern).parse(text);
}

struct Case {
    std::string_view text;
    std::optional<sys_seconds> date;
};

TEST(DatePattern, ReadsHeaderDatesWithNumericZones) {
    const DatePattern pattern("en_US_POSIX", "EEE, d MMM yyyy HH:mm:ss Z");
    const Case cases[] = {
        {"Mon, 1 Jan 2024 10:00:00 +0800", newYearUtc + 2h},
        {"Mon, 01 Jan 2024 10:00:00 -0000", newYearUtc + 10h},
        {"Mon,  1 Jan 2024 10:00:00 -0330", newYearUtc + 13h + 30min},
        {"mon, 1 JAN 2024 0:00:59 +0000", newYearUtc + 59s},
        {"Monday, 1 January 2024 10:00:00 +0800", newYearUtc + 2h},
        {"Thu, 29 Feb 2024 23:59:59 +0000", newYearUtc + 60 * 24h - 1s},
        // The weekday tells nothing.
        {"Sun, 1 Jan 2024 10:00:00 +0800", newYearUtc + 2h},
    };
    for (const Case& each : cases) EXPECT_EQ(pattern.parse(each.text), each.date) << each.text;
    for (const char* odd : {" (CST)", " ", "\n2024"})
        EXPECT_EQ(pattern.parse(std::string("Mon, 1 Jan 2024 10:00:00 +0800") + odd), std::nullopt) << odd;
    for (const char* cut : {"", "Mon, 1 Jan 2024 10:00:00", "Mon, 1 Jan 2024 10:00:00 "})
        EXPECT_EQ(pattern.parse(cut), std::nullopt) << cut;
    // Nothing rolls over, and a year has four digits.
    for (const char* wrong :
         {"Mon, 1 Jan 24 10:00", "Mon, 1 Jan 124 10:00", "Mon, 1 Jan 20240 10:00", "Mon, 1 Jan -024 10:00",
          "Thu, 30 Feb 2024 10:00", "Mon, 0 Jan 2024 10:00", "Mon, 1 Jan 2024 24:00", "Mon, 1 Jan 2024 10:60",
          "Mon, 1 Jan 0000 10:00", "Xyz, 1 Jan 2024 10:00", "Mon, 1 Ene 2024 10:00",
          "Mon, 99999999999999999999 Jan 2024 10:00", "Mon, １ Jan 2024 10:00", "\xFF\xE4, 1 Jan 2024 10:00"})
        EXPECT_EQ(pattern.parse(std::string(wrong) + ":00 +0800"), std::nullopt) << wrong;
}

TEST(DatePattern, ReadsNamedZones) {
    const DatePattern pattern("en_US_POSIX", "d MMM yyyy HH:mm:ss z");
    const Case cases[] = {
        {"1 Jan 2024 00:00:00 GMT", newYearUtc},      {"1 Jan 2024 00:00:00 UTC", newYearUtc},
        {"1 Jan 2024 00:00:00 EST", newYearUtc + 5h}, {"1 Jan 2024 00:00:00 CST", newYearUtc + 6h},
        {"1 Jan 2024 00:00:00 PST", newYearUtc + 8h}, {"1 Jan 2024 00:00:00 PDT", newYearUtc + 7h},
        {"1 Jan 2024 00:00:00 XYZ", std::nullopt},    {"1 Jan 2024 00:00:00 GMTX", std::nullopt},
    };
    for (const Case& each : cases) EXPECT_EQ(pattern.parse(each.text), each.date) << each.text;
}

TEST(DatePattern, TwoDigitYearsAreThoseOfMail) {
    const std::pair<std::string_view, int> cases[] = {{"50", 1950}, {"99", 1999}, {"00", 2000}, {"49", 2049}};
    for (const auto& [digits, year] : cases) {
        const sys_seconds july = std::chrono::sys_days(std::chrono::year(year) / 7 / 1);
        EXPECT_EQ(parse("d MMM yy HH:mm:ss Z", "1 Jul " + std::string(digits) + " 00:00:00 +0000"), july);
    }
    for (const char* wrong :
         {"1 Jul 2024 00:00:00 +0000", "1 Jul 4 00:00:00 +0000", "1 Jul 124 00:00:00 +0000"})
        EXPECT_EQ(parse("d MMM yy HH:mm:ss Z", wrong), std::nullopt) << wrong;
}

TEST(DatePattern, LiteralsAndAbuttingNumbersStandAsWritten) {
    const TimeZoneGuard zone("Asia/Shanghai");

    struct PatternCase {
        const char* pattern;
        const char* text;
        std::optional<sys_seconds> date;
    };

    const PatternCase cases[] = {
        {"yyyy-MM-dd HH:mm:ss", "2024-01-01 08:00:00", newYearUtc},
        {"yyyy-MM-dd HH:mm:ss", "2024-01-01T08:00:00", std::nullopt},
        {"yyyy-MM-dd HH:mm:ss", "24-01-01 08:00:00", std::nullopt},
        {"yyyy-MM-dd'T'HH:mm:ssZ", "2024-01-01T08:00:00+0800", newYearUtc},
        {"yyyy-MM-dd'T'HH:mm:ssZ", "2024-01-01T00:00:00Z", newYearUtc},
        {"yyyy-MM-dd'T'HH:mm:ssZ", "2024-01-01T08:00:00.5+0800", std::nullopt},
        {"yyyy-MM-dd'T'HH:mm:ss'Z'", "2024-01-01T08:00:00Z", newYearUtc},
        {"yyyy-MM-dd'T'HH:mm:ss", "2024-01-01T08:00:00", newYearUtc},
        {"yyyy-MM-dd'T'HH:mm:ss", "2024-01-01t08:00:00", std::nullopt},
        {"yyyyMMdd", "20240101", newYearUtc - 8h},
        {"yyyyMMdd", "2024011", std::nullopt},
        {"d 'o''clock' ''yyyy", "1 o'clock '2024", newYearUtc - 8h},
        {"yyyy年M月d日", "2024年1月1日", newYearUtc - 8h},
    };
    for (const PatternCase& each : cases) EXPECT_EQ(parse(each.pattern, each.text), each.date) << each.text;
}

TEST(DatePattern, TakesTheZoneOfTheMomentItIsMade) {
    const char* const pattern = "yyyy-MM-dd HH:mm";
    const TimeZoneGuard first("Asia/Shanghai");
    const DatePattern shanghai("zh_CN", pattern);
    const TimeZoneGuard second("America/New_York");
    const DatePattern newYork("zh_CN", pattern);
    EXPECT_EQ(shanghai.format(newYearUtc), "2024-01-01 08:00");
    EXPECT_EQ(newYork.format(newYearUtc), "2023-12-31 19:00");
    EXPECT_EQ(newYork.format(newYearUtc + 182 * 24h), "2024-06-30 20:00");
    EXPECT_EQ(shanghai.parse("2024-01-01 08:00"), newYearUtc);
    EXPECT_EQ(newYork.parse("2023-12-31 19:00"), newYearUtc);
    EXPECT_EQ(shanghai.format(sys_seconds(-1s)), "1970-01-01 07:59");
}

TEST(DatePattern, RefusesWhatIcuDoesntTake) {
    EXPECT_THROW(DatePattern("en_US_POSIX", "yyyy-bb n"), std::invalid_argument);
    EXPECT_THROW(DatePattern(std::string(400, 'x'), "yyyy"), std::invalid_argument);
}

} // namespace
} // namespace corvane::text
