// Bytes in a charset that is known by its name alone. Thread-safe.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane::text {

// By the name that a mail gives, in any case. Absent for a name that ICU doesn't know, and for bytes that
// aren't valid in it.
std::optional<std::string> fromNamedCharset(std::string_view bytes, std::string_view name);

} // namespace corvane::text
