// Dates as mail headers spell them. Thread-safe.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace corvane::mime {

// Tries the date header patterns in their order, without a closing comment in brackets, then ISO 8601 with
// and without a fraction of a second, which is dropped. A date without a zone is local time. Nullopt for a
// text in none of these forms.
std::optional<std::chrono::sys_seconds> parseMailDate(std::string_view header);

} // namespace corvane::mime
