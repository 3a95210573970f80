#include "text/hidden_characters.h"

#include <cstdint>

#include <fmt/format.h>

#include "text/charsets/charset.h"
#include "text/charsets/utf8_step.h"

namespace corvane::text {

namespace {

// The first bytes of hidden characters in UTF-8, but for those of many visible ones.
bool mayBeHidden(char byte) noexcept {
    const auto value = static_cast<unsigned char>(byte);
    return value < 0x20 || value == 0x7F || value == 0xC2 || value == 0xD8 || value == 0xE2;
}

// Copies the text, with `replace(result, scalar)` in place of each hidden character.
template <typename Replace>
std::string replaced(std::string_view text, const Replace& replace) {
    std::string result;
    result.reserve(text.size());
    std::size_t copied = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (!mayBeHidden(text[at])) {
            ++at;
            continue;
        }
        const std::size_t start = at;
        const UChar32 scalar = nextScalar(text, at);
        if (scalar < 0 || !isHiddenCharacter(static_cast<char32_t>(scalar))) continue;
        result.append(text.substr(copied, start - copied));
        replace(result, static_cast<char32_t>(scalar));
        copied = at;
    }
    return result.append(text.substr(copied));
}

// The block "Control Pictures" has one for each control of ASCII.
void appendSign(std::string& line, char32_t scalar) {
    if (scalar < 0x20) {
        appendScalar(line, static_cast<UChar32>(0x2400 + scalar));
    } else if (scalar == 0x7F) {
        appendScalar(line, 0x2421);
    } else {
        line += fmt::format("<U+{:04X}>", static_cast<std::uint32_t>(scalar));
    }
}

} // namespace

std::string withoutHiddenCharacters(std::string_view text) {
    return replaced(repairedUtf8(text), [](std::string&, char32_t) {});
}

std::string withVisibleSigns(std::string_view text) {
    return replaced(repairedUtf8(text), appendSign);
}

std::string linesWithVisibleSigns(std::string_view text) {
    std::string lines = replaced(repairedUtf8(text), [](std::string& result, char32_t scalar) {
        if (scalar == '\n') {
            // What a mail calls a line end is one here.
            if (result.ends_with("␍")) result.resize(result.size() - std::string_view("␍").size());
            result += '\n';
        } else if (scalar == '\t') {
            result += "    ";
        } else {
            appendSign(result, scalar);
        }
    });
    return lines;
}

std::string withHiddenEscaped(std::string_view json) {
    return replaced(json, [](std::string& result, char32_t scalar) {
        if (scalar == '\n' || scalar == '\t' || scalar == '\r') {
            result += static_cast<char>(scalar);
        } else {
            result += fmt::format("\\u{:04X}", static_cast<std::uint32_t>(scalar));
        }
    });
}

} // namespace corvane::text
