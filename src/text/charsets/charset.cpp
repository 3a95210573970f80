#include "text/charsets/charset.h"

#include <array>
#include <cstddef>
#include <memory>

#include <unicode/ucnv.h>

#include "text/charsets/ascii.h"
#include "text/charsets/unicode_error.h"
#include "text/charsets/utf8_step.h"

namespace corvane::text {

namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

// The start of the first ill-formed sequence at or behind `position`, or the size.
std::size_t wellFormedEnd(std::string_view bytes, std::size_t position) noexcept {
    for (;;) {
        position += asciiPrefixLength(bytes.substr(position));
        while (position < bytes.size() && static_cast<unsigned char>(bytes[position]) >= 0x80) {
            const std::size_t start = position;
            if (nextScalar(bytes, position) < 0) return start;
        }
        if (position == bytes.size()) return position;
    }
}

struct ConverterCloser {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};

using Converter = std::unique_ptr<UConverter, ConverterCloser>;

// Stops at what it can't convert, in place of ICU's silent replacement characters.
Converter openStrict(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &status));
    requireSuccess(status, "ucnv_open");
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    requireSuccess(status, "ucnv_setToUCallBack");
    return converter;
}

} // namespace

bool isValidUtf8(std::string_view bytes) noexcept {
    return wellFormedEnd(bytes, 0) == bytes.size();
}

std::string repairedUtf8(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size());
    std::size_t position = 0;
    for (;;) {
        const std::size_t end = wellFormedEnd(bytes, position);
        result.append(bytes.substr(position, end - position));
        if (end == bytes.size()) return result;
        position = end;
        nextScalar(bytes, position);
        result.append(replacementCharacter);
    }
}

std::string fromLatin1(std::string_view bytes) {
    const std::size_t ascii = asciiPrefixLength(bytes);
    std::string result;
    result.reserve(bytes.size() + (bytes.size() - ascii) / 2);
    result.append(bytes.substr(0, ascii));
    for (const char byte : bytes.substr(ascii)) {
        const auto scalar = static_cast<unsigned char>(byte);
        if (scalar < 0x80) {
            result.push_back(byte);
        } else {
            result.push_back(static_cast<char>(0xC0 | scalar >> 6));
            result.push_back(static_cast<char>(0x80 | (scalar & 0x3F)));
        }
    }
    return result;
}

std::optional<std::string> toLatin1(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t ascii = asciiPrefixLength(text.substr(position));
        result.append(text.substr(position, ascii));
        position += ascii;
        if (position == text.size()) break;
        const UChar32 character = nextScalar(text, position);
        if (character < 0 || character > 0xFF) return std::nullopt;
        result.push_back(static_cast<char>(character));
    }
    return result;
}

std::optional<std::string> fromGb18030(std::string_view bytes) {
    if (isAscii(bytes)) return std::string(bytes);
    // ICU's converters keep state between calls and are no more than thread-local for it.
    thread_local const Converter gb18030 = openStrict("gb18030");
    thread_local const Converter utf8 = openStrict("UTF-8");
    std::array<UChar, 1024> pivot;
    UChar* pivotSource = pivot.data();
    UChar* pivotTarget = pivot.data();
    const char* source = bytes.data();
    // No sequence grows by more than from two bytes to three.
    std::string text(bytes.size() + bytes.size() / 2 + 1, '\0');
    char* target = text.data();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_convertEx(utf8.get(), gb18030.get(), &target, text.data() + text.size(), &source,
                   source + bytes.size(), pivot.data(), &pivotSource, &pivotTarget,
                   pivot.data() + pivot.size(), true, true, &status);
    if (U_FAILURE(status)) return std::nullopt;
    text.resize(static_cast<std::size_t>(target - text.data()));
    return text;
}

} // namespace corvane::text
