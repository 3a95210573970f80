// User-perceived characters: extended grapheme clusters of UAX #29. UTF-8 in, views out. Thread-safe.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvane::text {

std::size_t graphemeCount(std::string_view text);

// At most `count` clusters from the start.
std::string_view graphemePrefix(std::string_view text, std::size_t count);

// The longest prefix of whole clusters that has at most `bytes` bytes.
std::string_view graphemePrefixWithinBytes(std::string_view text, std::size_t bytes);

} // namespace corvane::text
