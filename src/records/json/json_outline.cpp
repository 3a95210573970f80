#include "records/json/json_outline.h"

#include <array>
#include <cstring>

#include "records/json/json_form.h"

namespace corvane {

namespace {

[[noreturn]] void failStructure() {
    throw JsonError("JSON: broken structure");
}

std::size_t skipBlanks(std::string_view text, std::size_t position) {
    while (position < text.size() && (text[position] == ' ' || text[position] == '\n' ||
                                      text[position] == '\t' || text[position] == '\r')) {
        ++position;
    }
    return position;
}

// From the opening quote to behind the closing one.
std::size_t skipString(std::string_view text, std::size_t position) {
    const std::size_t start = position + 1;
    for (std::size_t search = start;;) {
        const auto* quote =
            static_cast<const char*>(std::memchr(text.data() + search, '"', text.size() - search));
        if (quote == nullptr) failStructure();
        const auto end = static_cast<std::size_t>(quote - text.data());
        std::size_t backslashes = 0;
        while (end - backslashes > start && text[end - backslashes - 1] == '\\') ++backslashes;
        if (backslashes % 2 == 0) return end + 1;
        search = end + 1;
    }
}

constexpr std::array<bool, 256> structuralBytes = [] {
    std::array<bool, 256> marks{};
    for (const char byte : {'"', '{', '}', '[', ']'}) marks[static_cast<unsigned char>(byte)] = true;
    return marks;
}();

std::size_t skipBracketed(std::string_view text, std::size_t position) {
    std::size_t depth = 0;
    while (position < text.size()) {
        const auto byte = static_cast<unsigned char>(text[position]);
        if (!structuralBytes[byte]) {
            ++position;
        } else if (byte == '"') {
            position = skipString(text, position);
        } else {
            ++position;
            if (byte == '{' || byte == '[')
                ++depth;
            else if (--depth == 0)
                return position;
        }
    }
    failStructure();
}

std::size_t skipValue(std::string_view text, std::size_t position) {
    if (position >= text.size()) failStructure();
    const char first = text[position];
    if (first == '"') return skipString(text, position);
    if (first == '{' || first == '[') return skipBracketed(text, position);
    const std::size_t end = text.find_first_of(",]} \n\r\t", position);
    if (end == std::string_view::npos || end == position) failStructure();
    return end;
}

} // namespace

JsonObjectOutline::JsonObjectOutline(std::string_view json)
  : text_(json) {
    position_ = skipBlanks(text_, 0);
    if (position_ >= text_.size() || text_[position_] != '{') failStructure();
    ++position_;
}

std::optional<JsonMember> JsonObjectOutline::next() {
    position_ = skipBlanks(text_, position_);
    if (position_ >= text_.size()) failStructure();
    if (text_[position_] == '}') {
        if (skipBlanks(text_, position_ + 1) != text_.size()) failStructure();
        return std::nullopt;
    }
    if (!first_) {
        if (text_[position_] != ',') failStructure();
        position_ = skipBlanks(text_, position_ + 1);
    }
    first_ = false;
    if (position_ >= text_.size() || text_[position_] != '"') failStructure();
    const std::size_t keyEnd = skipString(text_, position_);
    const std::string_view key = text_.substr(position_ + 1, keyEnd - position_ - 2);
    position_ = skipBlanks(text_, keyEnd);
    if (position_ >= text_.size() || text_[position_] != ':') failStructure();
    position_ = skipBlanks(text_, position_ + 1);
    const std::size_t valueEnd = skipValue(text_, position_);
    const JsonMember member{key, text_.substr(position_, valueEnd - position_)};
    position_ = valueEnd;
    return member;
}

JsonArrayPieces::JsonArrayPieces(std::string_view array, std::size_t pieceBytes)
  : text_(array)
  , pieceBytes_(pieceBytes) {
    if (text_.size() < 2 || text_.front() != '[' || text_.back() != ']') failStructure();
    position_ = skipBlanks(text_, 1);
    done_ = position_ == text_.size() - 1;
}

std::optional<std::string_view> JsonArrayPieces::next() {
    if (done_) return std::nullopt;
    const std::size_t start = position_;
    while (true) {
        const std::size_t end = skipValue(text_, position_);
        const std::size_t separator = skipBlanks(text_, end);
        if (separator >= text_.size()) failStructure();
        if (text_[separator] == ']') {
            if (separator != text_.size() - 1) failStructure();
            done_ = true;
            return text_.substr(start, end - start);
        }
        if (text_[separator] != ',') failStructure();
        position_ = skipBlanks(text_, separator + 1);
        if (end - start >= pieceBytes_) return text_.substr(start, end - start);
    }
}

} // namespace corvane
