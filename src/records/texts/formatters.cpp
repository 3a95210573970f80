#include "records/texts/formatters.h"

#include <array>
#include <cmath>
#include <ctime>

#include <fmt/format.h>

#include "records/timestamps.h"

namespace corvane {

namespace {

// Up to `digits` digits behind the point, without closing zeros.
std::string shortDecimal(double value, int digits) {
    std::string text = fmt::format("{:.{}f}", value, digits);
    if (text.find('.') == std::string::npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text;
}

} // namespace

std::string formatListDate(std::chrono::sys_seconds date) {
    const std::time_t time = date.time_since_epoch().count();
    std::tm parts{};
    ::localtime_r(&time, &parts);
    return fmt::format("{} {:02}:{:02}", localDay(date), parts.tm_hour, parts.tm_min);
}

std::string formatMailDate(const std::optional<std::chrono::sys_seconds>& date) {
    return date ? formatListDate(*date) : "日期未知";
}

std::string formatByteCount(std::int64_t bytes) {
    struct Unit {
        double size;
        int digits;
        const char* name;
    };

    constexpr std::array<Unit, 3> units = {{{1e3, 0, "KB"}, {1e6, 1, "MB"}, {1e9, 2, "GB"}}};
    const double magnitude = std::abs(static_cast<double>(bytes));
    // Moves up when rounding would show a thousand of the smaller unit.
    std::size_t index = 0;
    while (index + 1 < units.size()) {
        const double scale = std::pow(10.0, units[index].digits);
        if (std::round(magnitude / units[index].size * scale) / scale < 1000.0) break;
        ++index;
    }
    double value = static_cast<double>(bytes) / units[index].size;
    if (index == 0 && bytes != 0 && std::abs(value) < 1.0) value = bytes > 0 ? 1.0 : -1.0;
    return fmt::format("{} {}", shortDecimal(value, units[index].digits), units[index].name);
}

} // namespace corvane
