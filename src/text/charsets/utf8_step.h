// Steps through UTF-8 text and single characters of it, by ICU's macros. Thread-safe.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <unicode/utf8.h>

namespace corvane::text {

// The scalar at `position`, which moves behind it; negative for an ill-formed sequence.
inline UChar32 nextScalar(std::string_view text, std::size_t& position) noexcept {
    UChar32 scalar = 0;
    // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): inside of the macro
    U8_NEXT(text.data(), position, text.size(), scalar);
    return scalar;
}

// Whether the byte stands within a character, behind its first byte.
inline bool continuesCharacter(char byte) noexcept {
    return U8_IS_TRAIL(byte);
}

// The bytes of the character that begins with `lead`; 1 for a byte that begins none.
inline std::size_t characterLength(char lead) noexcept {
    return 1 + static_cast<std::size_t>(U8_COUNT_TRAIL_BYTES(lead));
}

// The text without the bytes at its end that begin a character and don't complete it.
inline std::string_view withoutCutCharacter(std::string_view text) noexcept {
    auto length = static_cast<std::ptrdiff_t>(text.size());
    U8_TRUNCATE_IF_INCOMPLETE(text.data(), 0, length);
    return text.substr(0, static_cast<std::size_t>(length));
}

// Appends the scalar; U+FFFD for a number that is none.
inline void appendScalar(std::string& text, UChar32 scalar) {
    std::array<char, U8_MAX_LENGTH> bytes;
    std::size_t length = 0;
    UBool isError = false;
    U8_APPEND(bytes.data(), length, bytes.size(), scalar, isError);
    isError ? text.append("\uFFFD") : text.append(bytes.data(), length);
}

} // namespace corvane::text
