#include "text/charsets/encoding.h"

#include <array>
#include <charconv>
#include <system_error>

#include "text/charsets/ascii.h"
#include "text/charsets/charset.h"

namespace corvane::text {

namespace {

constexpr std::string_view base64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t noDigit = 0xFF;

using ByteTable = std::array<std::uint8_t, 256>;

constexpr ByteTable makeBase64Digits() {
    ByteTable digits{};
    digits.fill(noDigit);
    for (std::size_t value = 0; value < base64Alphabet.size(); ++value)
        digits[static_cast<unsigned char>(base64Alphabet[value])] = static_cast<std::uint8_t>(value);
    return digits;
}

constexpr ByteTable makeHexadecimalDigits() {
    ByteTable digits{};
    digits.fill(noDigit);
    for (int value = 0; value < 16; ++value) {
        digits[static_cast<unsigned char>("0123456789abcdef"[value])] = static_cast<std::uint8_t>(value);
        digits[static_cast<unsigned char>("0123456789ABCDEF"[value])] = static_cast<std::uint8_t>(value);
    }
    return digits;
}

constexpr ByteTable makePathCharacters() {
    ByteTable allowed{};
    constexpr std::string_view characters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                                            "-._~!$&'()*+,=:@/";
    for (const char character : characters) allowed[static_cast<unsigned char>(character)] = 1;
    return allowed;
}

constexpr ByteTable base64Digits = makeBase64Digits();
constexpr ByteTable hexadecimalDigits = makeHexadecimalDigits();
constexpr ByteTable pathCharacters = makePathCharacters();

// Four digits as 24 bits; nothing for a character outside the alphabet.
std::optional<std::uint32_t> base64Group(const char* characters) noexcept {
    std::uint32_t value = 0;
    for (int index = 0; index < 4; ++index) {
        const std::uint8_t digit = base64Digits[static_cast<unsigned char>(characters[index])];
        if (digit == noDigit) return std::nullopt;
        value = value << 6 | digit;
    }
    return value;
}

void appendBytes(std::string& bytes, std::uint32_t group, int count) {
    for (int index = 0; index < count; ++index) bytes.push_back(static_cast<char>(group >> (16 - 8 * index)));
}

void appendDigits(std::string& text, std::uint32_t group, int count) {
    for (int index = 0; index < count; ++index)
        text.push_back(base64Alphabet[group >> (18 - 6 * index) & 0x3F]);
}

std::uint32_t byteAt(std::string_view bytes, std::size_t position) noexcept {
    return static_cast<unsigned char>(bytes[position]);
}

} // namespace

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text[position] != '%') {
            bytes.push_back(text[position]);
            continue;
        }
        const std::optional<unsigned char> byte = hexadecimalByte(text.substr(position + 1, 2));
        if (!byte) return std::nullopt;
        bytes.push_back(static_cast<char>(*byte));
        position += 2;
    }
    if (!isValidUtf8(bytes)) return std::nullopt;
    return bytes;
}

std::string percentEncodedPath(std::string_view path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(path.size());
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (pathCharacters[byte] != 0) {
            encoded.push_back(character);
        } else {
            encoded.push_back('%');
            encoded.push_back(digits[byte >> 4]);
            encoded.push_back(digits[byte & 0xF]);
        }
    }
    return encoded;
}

std::optional<std::string> base64Decoded(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    const std::size_t whole = text.size() - (padding == 0 ? 0 : 4);
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (std::size_t position = 0; position < whole; position += 4) {
        const std::optional<std::uint32_t> group = base64Group(text.data() + position);
        if (!group) return std::nullopt;
        appendBytes(bytes, *group, 3);
    }
    if (padding == 0) return bytes;
    std::array<char, 4> last{'A', 'A', 'A', 'A'};
    text.copy(last.data(), 4 - padding, whole);
    const std::optional<std::uint32_t> group = base64Group(last.data());
    if (!group) return std::nullopt;
    appendBytes(bytes, *group, 3 - static_cast<int>(padding));
    return bytes;
}

std::string base64Encoded(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t position = 0;
    for (; position + 3 <= bytes.size(); position += 3)
        appendDigits(text,
                     byteAt(bytes, position) << 16 | byteAt(bytes, position + 1) << 8 |
                         byteAt(bytes, position + 2),
                     4);
    if (bytes.size() - position == 1) {
        appendDigits(text, byteAt(bytes, position) << 16, 2);
        text.append("==");
    } else if (bytes.size() - position == 2) {
        appendDigits(text, byteAt(bytes, position) << 16 | byteAt(bytes, position + 1) << 8, 3);
        text.push_back('=');
    }
    return text;
}

std::optional<unsigned char> hexadecimalByte(std::string_view twoDigits) noexcept {
    if (twoDigits.size() != 2) return std::nullopt;
    const std::uint8_t high = hexadecimalDigits[static_cast<unsigned char>(twoDigits[0])];
    const std::uint8_t low = hexadecimalDigits[static_cast<unsigned char>(twoDigits[1])];
    if (high == noDigit || low == noDigit) return std::nullopt;
    return static_cast<unsigned char>(high << 4 | low);
}

std::optional<std::int64_t> parseInteger(std::string_view text) noexcept {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

} // namespace corvane::text
