// Bytes to text and back. Text is UTF-8 in std::string. Thread-safe; nothing here throws but bad_alloc, and
// UnicodeError on a system whose ICU lacks its data.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane::text {

// Whether the bytes are well-formed UTF-8 (RFC 3629: no surrogates, no overlong forms).
bool isValidUtf8(std::string_view bytes) noexcept;

// The text with every maximal ill-formed subsequence replaced by U+FFFD.
std::string repairedUtf8(std::string_view bytes);

// ISO 8859-1: every byte is the scalar of its value. Never fails.
std::string fromLatin1(std::string_view bytes);

// Each scalar must be at most U+00FF and gives one byte; absent otherwise.
std::optional<std::string> toLatin1(std::string_view text);

// GB 18030, which holds GBK and GB 2312. Absent when a sequence is invalid.
std::optional<std::string> fromGb18030(std::string_view bytes);

} // namespace corvane::text
