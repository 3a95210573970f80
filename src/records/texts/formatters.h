// The only date and size formats of the screens. Thread-safe.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

// "yyyy-MM-dd HH:mm" in the time zone of the process.
std::string formatListDate(std::chrono::sys_seconds date);

// The date of a mail in the same form; "日期未知" without one.
std::string formatMailDate(const std::optional<std::chrono::sys_seconds>& date);

// Decimal file units from kilobytes to gigabytes: "1 KB", "12.3 MB", "1.25 GB". Never bytes, never terabytes.
std::string formatByteCount(std::int64_t bytes);

} // namespace corvane
