// Percent encoding, base64, hexadecimal and whole-text integers. Thread-safe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::text {

// RFC 3986 section 2.1. Absent when a '%' has no two hexadecimal digits behind it or when the result is no
// valid UTF-8.
std::optional<std::string> percentDecoded(std::string_view text);

// Encodes every byte but the unreserved and sub-delimiter characters, ':', '@' and '/'; ';' is encoded too.
std::string percentEncodedPath(std::string_view path);

// RFC 4648 section 4, strict: the alphabet, right padding and no other character; absent otherwise. Bits that
// padding leaves over in the last digit may be set, as some mail programs do.
std::optional<std::string> base64Decoded(std::string_view text);
std::string base64Encoded(std::string_view bytes);

// The byte of exactly two hexadecimal digits, without a sign.
std::optional<unsigned char> hexadecimalByte(std::string_view twoDigits) noexcept;

// The whole text as a decimal number: an optional sign, then ASCII digits only, no overflow.
std::optional<std::int64_t> parseInteger(std::string_view text) noexcept;

} // namespace corvane::text
