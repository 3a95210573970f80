#include "records/timestamps.h"

#include <ctime>

#include <fmt/format.h>

#include "text/charsets/encoding.h"

namespace corvane {

namespace {

using std::chrono::days;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;

// std::chrono::year ends at 32767, a mail's date may not; the algorithm is the usual one over eras of 400
// years.
struct CivilDate {
    std::int64_t year;
    unsigned month;
    unsigned day;
};

CivilDate civilFromDays(std::int64_t dayCount) {
    const std::int64_t shifted = dayCount + 719468;
    const std::int64_t era = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
    const auto dayOfEra = static_cast<unsigned>(shifted - era * 146097);
    const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned monthIndex = (5 * dayOfYear + 2) / 153;
    const unsigned month = monthIndex < 10 ? monthIndex + 3 : monthIndex - 9;
    return {static_cast<std::int64_t>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0), month,
            dayOfYear - (153 * monthIndex + 2) / 5 + 1};
}

std::int64_t daysFromCivil(std::int64_t year, unsigned month, unsigned day) {
    year -= month <= 2 ? 1 : 0;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const auto yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    return era * 146097 +
           static_cast<std::int64_t>(yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear) - 719468;
}

std::string formatDateTime(sys_seconds date) {
    const std::int64_t total = date.time_since_epoch().count();
    std::int64_t dayCount = total / 86400;
    std::int64_t rest = total % 86400;
    if (rest < 0) {
        rest += 86400;
        --dayCount;
    }
    const CivilDate civil = civilFromDays(dayCount);
    const auto format =
        civil.year > 9999 ? "{:+}-{:02}-{:02}T{:02}:{:02}:{:02}" : "{:04}-{:02}-{:02}T{:02}:{:02}:{:02}";
    return fmt::format(fmt::runtime(format), civil.year, civil.month, civil.day, rest / 3600, rest / 60 % 60,
                       rest % 60);
}

// Reads exactly `width` digits from the front of `text`.
std::optional<unsigned> takeDigits(std::string_view& text, std::size_t width) {
    if (text.size() < width) return std::nullopt;
    unsigned value = 0;
    for (const char digit : text.substr(0, width)) {
        if (digit < '0' || digit > '9') return std::nullopt;
        value = value * 10 + static_cast<unsigned>(digit - '0');
    }
    text.remove_prefix(width);
    return value;
}

bool takeCharacter(std::string_view& text, char expected) {
    if (!text.starts_with(expected)) return false;
    text.remove_prefix(1);
    return true;
}

std::optional<std::int64_t> takeYear(std::string_view& text) {
    const std::size_t end = text.find('-', 1);
    if (end == std::string_view::npos || end > 13) return std::nullopt;
    const bool isSigned = text.front() == '+' || text.front() == '-';
    if (!isSigned && end != 4) return std::nullopt;
    const auto year = text::parseInteger(text.substr(0, end));
    if (year) text.remove_prefix(end);
    return year;
}

unsigned daysInMonth(std::int64_t year, unsigned month) {
    if (month == 2) return (year % 4 == 0 && (year % 100 != 0 || year % 400 == 0)) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

std::tm localTime(sys_seconds date) {
    const std::time_t time = date.time_since_epoch().count();
    std::tm parts{};
    // A year that doesn't fit an int fails; such a date is taken as UTC's last representable moment.
    if (::localtime_r(&time, &parts) == nullptr) parts.tm_year = 0;
    return parts;
}

} // namespace

std::string formatTimestamp(sys_seconds date) {
    return formatDateTime(date) + "Z";
}

std::string formatTimestampWithMilliseconds(std::chrono::system_clock::time_point moment) {
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(moment);
    const auto whole = std::chrono::floor<seconds>(milliseconds);
    return fmt::format("{}.{:03}Z", formatDateTime(whole), (milliseconds - whole).count());
}

std::optional<sys_seconds> parseTimestamp(std::string_view text) {
    if (text.empty()) return std::nullopt;
    const auto year = takeYear(text);
    if (!year || !takeCharacter(text, '-')) return std::nullopt;
    const auto month = takeDigits(text, 2);
    if (!month || !takeCharacter(text, '-')) return std::nullopt;
    const auto day = takeDigits(text, 2);
    if (!day || !takeCharacter(text, 'T')) return std::nullopt;
    const auto hour = takeDigits(text, 2);
    if (!hour || !takeCharacter(text, ':')) return std::nullopt;
    const auto minute = takeDigits(text, 2);
    if (!minute || !takeCharacter(text, ':')) return std::nullopt;
    const auto second = takeDigits(text, 2);
    if (!second || text != "Z") return std::nullopt;
    if (*month < 1 || *month > 12 || *day < 1 || *day > daysInMonth(*year, *month)) return std::nullopt;
    if (*hour > 23 || *minute > 59 || *second > 60) return std::nullopt;
    return sys_seconds(
        seconds(daysFromCivil(*year, *month, *day) * 86400 + (*hour * 60LL + *minute) * 60 + *second));
}

sys_seconds currentTimestamp() {
    return std::chrono::floor<seconds>(std::chrono::system_clock::now());
}

// No zone is days away from UTC, so it is asked only near the turn of a year.
std::int64_t localYear(sys_seconds date) {
    const CivilDate utc = civilFromDays(std::chrono::floor<days>(date).time_since_epoch().count());
    const bool isNearTurn = (utc.month == 1 && utc.day <= 3) || (utc.month == 12 && utc.day >= 29);
    const bool fitsTm = utc.year >= 0 && utc.year <= 9999;
    if (fitsTm && !isNearTurn) return utc.year;
    return std::int64_t{localTime(date).tm_year} + 1900;
}

std::string localDay(sys_seconds date) {
    const std::tm parts = localTime(date);
    return fmt::format("{:04}-{:02}-{:02}", std::int64_t{parts.tm_year} + 1900, parts.tm_mon + 1,
                       parts.tm_mday);
}

} // namespace corvane
