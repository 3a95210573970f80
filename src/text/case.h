// Lower-casing and comparison without regard to case, by the Unicode rules of the root locale. UTF-8 in and
// out, with a byte-wise path where everything is ASCII. Thread-safe.
#pragma once

#include <string>
#include <string_view>

namespace corvane::text {

// Full case mappings; ill-formed bytes become U+FFFD.
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

// Only A to Z.
std::string asciiLowercased(std::string_view text);
std::string asciiUppercased(std::string_view text);

// Full case folding on both sides.
bool equalsIgnoringCase(std::string_view a, std::string_view b);
bool containsIgnoringCase(std::string_view text, std::string_view part);

} // namespace corvane::text
