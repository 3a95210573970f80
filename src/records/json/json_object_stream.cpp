#include "records/json/json_object_stream.h"

#include <algorithm>
#include <array>

#include "records/json/json_form.h"

namespace corvane {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;
constexpr std::size_t largestValueBytes = std::size_t{32} << 20;

[[noreturn]] void fail(const char* what) {
    throw JsonError(what);
}

enum Mark : unsigned char { inText = 1, outsideOfText = 2 };

// The bytes that may change the structure.
constexpr std::array<unsigned char, 256> marks = [] {
    std::array<unsigned char, 256> table{};
    for (const char byte : {'"', '\\'}) table[static_cast<unsigned char>(byte)] = inText;
    for (const char byte : {'"', '{', '}', '[', ']', ','})
        table[static_cast<unsigned char>(byte)] |= outsideOfText;
    return table;
}();

bool isBlank(char byte) {
    return byte == ' ' || byte == '\n' || byte == '\t' || byte == '\r';
}

} // namespace

void JsonObjectStream::add(std::string_view text) {
    while (!text.empty()) {
        if (state_ == State::inValue || state_ == State::inList || state_ == State::inKey)
            text.remove_prefix(passText(text));
        if (text.empty()) return;
        step(text.front());
        text.remove_prefix(1);
    }
}

// Takes what has no meaning for the structure: nearly all of the text. The number of bytes.
std::size_t JsonObjectStream::passText(std::string_view text) {
    std::size_t length = isEscaped_ ? 1 : 0;
    isEscaped_ = false;
    const unsigned char mark = inString_ ? inText : outsideOfText;
    while (length < text.size() && (marks[static_cast<unsigned char>(text[length])] & mark) == 0) ++length;
    append(text.substr(0, length));
    return length;
}

void JsonObjectStream::append(std::string_view text) {
    std::string& target = state_ == State::inKey ? key_ : pending_;
    if (state_ == State::inValue && wanted_ == Wanted::nothing) return;
    if (target.size() + text.size() > largestValueBytes) fail("JSON: a value is too large");
    target.append(text);
}

void JsonObjectStream::step(char byte) {
    if (state_ == State::inKey) return passKey(byte);
    if (state_ == State::inValue || state_ == State::inList) return passMark(byte);
    if (!isBlank(byte)) stepOutside(byte);
}

void JsonObjectStream::passKey(char byte) {
    if (byte == '"') {
        inString_ = false;
        state_ = State::colon;
        return;
    }
    isEscaped_ = byte == '\\';
    append({&byte, 1});
}

// Outside of keys and values.
void JsonObjectStream::stepOutside(char byte) {
    switch (state_) {
    case State::start:
        if (byte != '{') fail("JSON: no object");
        state_ = State::firstKey;
        return;
    case State::firstKey:
    case State::key:
        if (byte == '}' && state_ == State::firstKey) {
            state_ = State::end;
            return;
        }
        if (byte != '"') fail("JSON: no key");
        key_.clear();
        inString_ = true;
        state_ = State::inKey;
        return;
    case State::colon:
        if (byte != ':') fail("JSON: no colon");
        state_ = State::value;
        return;
    case State::value:
        return beginValue(byte);
    case State::afterValue:
        if (byte != ',' && byte != '}') fail("JSON: no comma");
        state_ = byte == ',' ? State::key : State::end;
        return;
    default:
        fail("JSON: content behind the end");
    }
}

void JsonObjectStream::beginValue(char byte) {
    wanted_ = receiver_.wanted(key_);
    pending_.clear();
    needsElement_ = false;
    depth_ = 0;
    if (wanted_ == Wanted::elements && byte == '[') {
        receiver_.beginList(key_);
        state_ = State::inList;
        return;
    }
    if (byte == ',' || byte == '}' || byte == ']') fail("JSON: no value");
    state_ = State::inValue;
    // Its first byte may open a text or brackets.
    if (byte == '"' || byte == '{' || byte == '[')
        passMark(byte);
    else
        append({&byte, 1});
}

void JsonObjectStream::passMark(char byte) {
    if (inString_) {
        inString_ = byte != '"';
        isEscaped_ = byte == '\\';
        return append({&byte, 1});
    }
    if (depth_ == 0 && (byte == ',' || byte == ']' || byte == '}')) return endValue(byte);
    inString_ = byte == '"';
    if (byte == '{' || byte == '[') ++depth_;
    if (byte == '}' || byte == ']') --depth_;
    append({&byte, 1});
}

// Outside of all brackets and texts of the value.
void JsonObjectStream::endValue(char byte) {
    if (state_ == State::inValue) {
        if (byte == ']') fail("JSON: a bracket too many");
        if (wanted_ != Wanted::nothing) receiver_.addMember(key_, pending_);
        state_ = byte == ',' ? State::key : State::end;
        return;
    }
    if (byte == '}') fail("JSON: a bracket too many");
    const bool isLarge = pending_.size() > pieceBytes;
    if (byte == ',' && !isLarge) return append(",");
    const bool isEmpty = std::ranges::all_of(pending_, isBlank);
    if (isEmpty && needsElement_) fail("JSON: a comma without an element");
    if (!isEmpty) receiver_.addElements(pending_);
    pending_.clear();
    needsElement_ = byte == ',';
    if (byte == ']') state_ = State::afterValue;
}

void JsonObjectStream::finish() const {
    if (state_ != State::end) fail("JSON: the text ends early");
}

} // namespace corvane
