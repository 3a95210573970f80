// The byte-wise path of text that is all ASCII, for the files of this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace corvane::text {

// The number of bytes below 0x80 that the text begins with.
inline std::size_t asciiPrefixLength(std::string_view text) noexcept {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t position = 0;
    for (; position + sizeof(std::uint64_t) <= text.size(); position += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + position, sizeof word);
        if ((word & highBits) != 0) break;
    }
    while (position < text.size() && static_cast<unsigned char>(text[position]) < 0x80) ++position;
    return position;
}

inline bool isAscii(std::string_view text) noexcept {
    return asciiPrefixLength(text) == text.size();
}

inline bool isAsciiDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

inline char asciiLower(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

} // namespace corvane::text
