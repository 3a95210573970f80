// User-perceived characters: extended grapheme clusters of UAX #29. UTF-8 in, views out. Thread-safe.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvane::text {

std::size_t graphemeCount(std::string_view text);

// At most `count` clusters from the start.
std::string_view graphemePrefix(std::string_view text, std::size_t count);

// At most `count` clusters from the end.
std::string_view graphemeSuffix(std::string_view text, std::size_t count);

// The longest prefix of whole clusters that has at most `bytes` bytes.
std::string_view graphemePrefixWithinBytes(std::string_view text, std::size_t bytes);

// Whether the text begins with what belongs to the character before it, such as an accent or the frame of a
// keycap.
bool beginsWithMark(std::string_view text) noexcept;

// Columns of a terminal that the text takes: two for a wide character (East Asian Width W and F), none for a
// mark.
std::size_t displayWidth(std::string_view text);

// The longest start of the text that takes at most so many columns.
std::string_view prefixWithinWidth(std::string_view text, std::size_t columns);

} // namespace corvane::text
