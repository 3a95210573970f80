// Points in time as ISO 8601 text in UTC, the only date form of the program's files, and as local years.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// "2024-01-31T08:15:00Z" (ISO 8601, whole seconds). Years beyond 9999 get a sign and as many digits as
// needed.
std::string formatTimestamp(std::chrono::sys_seconds date);

// Absent for any other form, one with a fraction of a second among them.
std::optional<std::chrono::sys_seconds> parseTimestamp(std::string_view text);

// With three digits of a second behind a point, for logs.
std::string formatTimestampWithMilliseconds(std::chrono::system_clock::time_point moment);

std::chrono::sys_seconds currentTimestamp();

// The calendar year, and the date "yyyy-MM-dd", in the time zone of the process (TZ).
std::int64_t localYear(std::chrono::sys_seconds date);
std::string localDay(std::chrono::sys_seconds date);

} // namespace corvane
