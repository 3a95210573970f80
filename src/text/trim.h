// Trimming by sets of Unicode characters. All functions take and give UTF-8; a byte that is no part of a
// valid sequence belongs to no set. The results are views into the argument. Thread-safe.
#pragma once

#include <string_view>

namespace corvane::text {

// Category Zs and U+0009.
bool isBlank(char32_t character) noexcept;

// Category Z*, U+0009 to U+000D and U+0085.
bool isWhitespaceOrNewline(char32_t character) noexcept;

std::string_view trimBlanks(std::string_view text) noexcept;
std::string_view trimWhitespaceAndNewlines(std::string_view text) noexcept;

// Trims the given ASCII characters, and just those.
std::string_view trimCharacters(std::string_view text, std::string_view asciiCharacters) noexcept;

} // namespace corvane::text
