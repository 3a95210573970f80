#include "text/dates/date_outline.h"

#include <algorithm>

#include "text/charsets/ascii.h"

namespace corvane::text {

namespace {

constexpr std::string_view blankCharacters = " \t\n\v\f\r";

bool isBlankCharacter(char character) noexcept {
    return blankCharacters.contains(character);
}

bool isPatternLetter(char character) noexcept {
    return asciiLower(character) >= 'a' && asciiLower(character) <= 'z';
}

bool isNumericField(char letter, std::size_t width) noexcept {
    constexpr std::string_view always = "yYuUdDFgHhKkmsSAw";
    constexpr std::string_view whenShort = "MLQqec";
    return always.contains(letter) || (width <= 2 && whenShort.contains(letter));
}

std::string_view withoutLeadingBlanks(std::string_view text) noexcept {
    return text.substr(std::min(text.find_first_not_of(blankCharacters), text.size()));
}

std::size_t leadingDigits(std::string_view text) noexcept {
    return static_cast<std::size_t>(std::ranges::find_if_not(text, isAsciiDigit) - text.begin());
}

} // namespace

DateOutline::DateOutline(std::string_view pattern) {
    bool quoted = false;
    for (std::size_t position = 0; position < pattern.size();) {
        const char character = pattern[position];
        std::size_t length = 1;
        if (pattern.substr(position, 2) == "''") {
            addLiteral('\'');
            length = 2;
        } else if (character == '\'') {
            quoted = !quoted;
        } else if (quoted || !isPatternLetter(character)) {
            addLiteral(character);
        } else {
            length = std::min(pattern.find_first_not_of(character, position), pattern.size()) - position;
            addField(character, length);
        }
        position += length;
    }
}

void DateOutline::addField(char letter, std::size_t width) {
    if (!isNumericField(letter, width)) {
        pieces_.push_back({.kind = Kind::name});
        return;
    }
    // Numbers without anything between them are told apart by their widths alone.
    if (!pieces_.empty() && pieces_.back().kind == Kind::number) pieces_.back().exactWidth = true;
    pieces_.push_back(
        {.kind = Kind::number, .width = width, .exactWidth = letter == 'y' && (width == 2 || width == 4)});
}

void DateOutline::addLiteral(char character) {
    if (!isBlankCharacter(character)) {
        pieces_.push_back({.kind = Kind::literal, .character = character});
    } else if (pieces_.empty() || pieces_.back().kind != Kind::blanks) {
        pieces_.push_back({.kind = Kind::blanks});
    }
}

bool DateOutline::fits(std::string_view text) const noexcept {
    for (std::size_t piece = 0; piece < pieces_.size(); ++piece) {
        const std::optional<std::string_view> rest = behind(piece, text);
        if (!rest) return false;
        text = *rest;
    }
    return text.empty();
}

// What is left of the text when the piece has taken its part; nothing when it finds none.
std::optional<std::string_view> DateOutline::behind(std::size_t piece, std::string_view text) const noexcept {
    const auto& [kind, character, width, exactWidth] = pieces_[piece];
    const std::string_view unpadded = withoutLeadingBlanks(text);
    std::size_t taken = 0;
    switch (kind) {
    case Kind::literal:
        if (!text.starts_with(character)) return std::nullopt;
        return text.substr(1);
    case Kind::blanks:
        if (unpadded.size() == text.size()) return std::nullopt;
        return unpadded;
    case Kind::name:
        taken = nameEnd(piece, unpadded);
        break;
    case Kind::number:
        taken = leadingDigits(unpadded);
        if (piece + 1 < pieces_.size() && pieces_[piece + 1].kind == Kind::number)
            taken = std::min(taken, width);
        if (exactWidth && taken != width) return std::nullopt;
        break;
    }
    if (taken == 0) return std::nullopt;
    return unpadded.substr(taken);
}

std::size_t DateOutline::nameEnd(std::size_t piece, std::string_view text) const noexcept {
    if (piece + 1 == pieces_.size()) return text.size();
    const Piece& next = pieces_[piece + 1];
    std::size_t end = std::string_view::npos;
    if (next.kind == Kind::blanks) end = text.find_first_of(blankCharacters);
    if (next.kind == Kind::literal) end = text.find(next.character);
    if (next.kind == Kind::number) end = text.find_first_of("0123456789");
    return std::min(end, text.size());
}

} // namespace corvane::text
