#include "text/charsets/named_charset.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include <unicode/ucnv.h>
#include <unicode/unistr.h>

namespace corvane::text {

namespace {

constexpr std::size_t longestName = 60;

struct ConverterCloser {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};

// ICU looks for a file of a name that it doesn't know: one with a slash could lead anywhere.
bool isName(std::string_view name) {
    return !name.empty() && name.size() <= longestName && std::ranges::all_of(name, [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
               byte == '-' || byte == '_' || byte == ':';
    });
}

} // namespace

std::optional<std::string> fromNamedCharset(std::string_view bytes, std::string_view name) {
    if (!isName(name) || bytes.size() > INT32_MAX) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, ConverterCloser> converter(
        ucnv_open(std::string(name).c_str(), &status));
    if (U_FAILURE(status)) return std::nullopt;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    const icu::UnicodeString text(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter.get(),
                                  status);
    if (U_FAILURE(status)) return std::nullopt;
    std::string result;
    text.toUTF8String(result);
    return result;
}

} // namespace corvane::text
