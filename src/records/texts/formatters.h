// The only date and size formats of the screens, and the readers of date headers. Thread-safe.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/dates/date_pattern.h"

namespace corvane {

// "yyyy-MM-dd HH:mm" in the time zone of the process.
std::string formatListDate(std::chrono::sys_seconds date);

// The date of a mail in the same form; "日期未知" without one.
std::string formatMailDate(const std::optional<std::chrono::sys_seconds>& date);

// Decimal file units from kilobytes to gigabytes: "1 KB", "12.3 MB", "1.25 GB". Never bytes, never terabytes.
std::string formatByteCount(std::int64_t bytes);

// The patterns for the date headers found in mail, in the order in which they are to be tried.
const std::vector<text::DatePattern>& dateParsers();

} // namespace corvane
