#include "text/trim.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include "text/charsets/utf8_step.h"

namespace corvane::text {

namespace {

using CharacterSet = bool (*)(char32_t) noexcept;

// The text behind its first character, or nothing when that is no member.
std::optional<std::string_view> withoutFirst(std::string_view text, CharacterSet isMember) noexcept {
    std::size_t next = 0;
    const UChar32 character = nextScalar(text, next);
    if (character < 0 || !isMember(static_cast<char32_t>(character))) return std::nullopt;
    return text.substr(next);
}

std::optional<std::string_view> withoutLast(std::string_view text, CharacterSet isMember) noexcept {
    // U8_PREV counts in 32 bits, which the longest character fits in.
    const std::string_view tail =
        text.substr(text.size() - std::min<std::size_t>(text.size(), U8_MAX_LENGTH));
    auto last = static_cast<std::int32_t>(tail.size());
    UChar32 character = 0;
    U8_PREV(tail.data(), 0, last, character);
    if (character < 0 || !isMember(static_cast<char32_t>(character))) return std::nullopt;
    return text.substr(0, text.size() - tail.size() + static_cast<std::size_t>(last));
}

std::string_view trim(std::string_view text, CharacterSet isMember) noexcept {
    while (!text.empty()) {
        const auto rest = withoutFirst(text, isMember);
        if (!rest) break;
        text = *rest;
    }
    while (!text.empty()) {
        const auto rest = withoutLast(text, isMember);
        if (!rest) break;
        text = *rest;
    }
    return text;
}

} // namespace

bool isBlank(char32_t character) noexcept {
    if (character < 0x80) return character == ' ' || character == '\t';
    return u_charType(static_cast<UChar32>(character)) == U_SPACE_SEPARATOR;
}

bool isWhitespaceOrNewline(char32_t character) noexcept {
    if (character < 0x80) return character == ' ' || (character >= '\t' && character <= '\r');
    return character == 0x85 || (U_MASK(u_charType(static_cast<UChar32>(character))) & U_GC_Z_MASK) != 0;
}

std::string_view trimBlanks(std::string_view text) noexcept {
    return trim(text, isBlank);
}

std::string_view trimWhitespaceAndNewlines(std::string_view text) noexcept {
    return trim(text, isWhitespaceOrNewline);
}

std::string_view trimCharacters(std::string_view text, std::string_view asciiCharacters) noexcept {
    const std::size_t start = text.find_first_not_of(asciiCharacters);
    if (start == std::string_view::npos) return text.substr(text.size());
    return text.substr(start, text.find_last_not_of(asciiCharacters) - start + 1);
}

} // namespace corvane::text
