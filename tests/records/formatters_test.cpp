#include <ctime>
#include <utility>

#include "records/mail_message_record.h"
#include "records/texts/formatters.h"
#include "records/timestamps.h"
#include "support/temporary_home.h"

namespace corvane {
namespace {

Date at(std::int64_t seconds) {
    return Date(std::chrono::seconds(seconds));
}

TEST(Formatters, ByteCountsAreDecimalAndNeverBytes) {
    const std::vector<std::pair<std::int64_t, std::string>> cases = {{0, "0 KB"},
                                                                     {1, "1 KB"},
                                                                     {500, "1 KB"},
                                                                     {1499, "1 KB"},
                                                                     {1500, "2 KB"},
                                                                     {999499, "999 KB"},
                                                                     {999500, "1 MB"},
                                                                     {1260000, "1.3 MB"},
                                                                     {12000000, "12 MB"},
                                                                     {1250000000, "1.25 GB"},
                                                                     {5000000000000, "5000 GB"},
                                                                     {999950000, "1 GB"}};
    for (const auto& [bytes, text] : cases) EXPECT_EQ(formatByteCount(bytes), text) << bytes;
}

TEST(Formatters, DatesFollowTheTimeZone) {
    const testing::TimeZoneGuard zone("Asia/Shanghai");
    EXPECT_EQ(formatListDate(at(1704038400)), "2024-01-01 00:00");
    EXPECT_EQ(localYear(at(1704038399)), 2023);
    EXPECT_EQ(localDay(at(1704038400)), "2024-01-01");
    const testing::TimeZoneGuard other("America/New_York");
    EXPECT_EQ(localYear(at(1704038400)), 2023);
}

TEST(Formatters, YearsAreThoseOfTheZoneOnEverySideOfTheirTurn) {
    for (const char* name : {"UTC", "Asia/Shanghai", "Pacific/Kiritimati", "Pacific/Pago_Pago", "<-24>24"}) {
        const testing::TimeZoneGuard zone(name);
        for (std::int64_t year = 0; year < 130; ++year) {
            const std::int64_t turn = (year * 365 + year / 4 - 25567) * 86400;
            for (std::int64_t hour = -24 * 7; hour <= 24 * 7; ++hour) {
                const std::time_t time = turn + hour * 3600;
                std::tm parts{};
                ASSERT_NE(localtime_r(&time, &parts), nullptr);
                ASSERT_EQ(localYear(at(time)), parts.tm_year + 1900) << name << " " << time;
            }
        }
    }
}

} // namespace
} // namespace corvane
