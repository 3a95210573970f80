#include "text/case.h"

#include <algorithm>
#include <string.h>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>

#include "text/charsets/ascii.h"
#include "text/charsets/charset.h"
#include "text/icu_text.h"

namespace corvane::text {

namespace {

std::string caseFolded(std::string_view text) {
    if (isAscii(text)) return asciiLowercased(text);
    std::string folded;
    folded.reserve(text.size());
    icu::StringByteSink<std::string> sink(&folded);
    UErrorCode status = U_ZERO_ERROR;
    icu::CaseMap::utf8Fold(U_FOLD_CASE_DEFAULT, icuPiece(text), sink, nullptr, status);
    requireSuccess(status, "CaseMap::utf8Fold");
    return folded;
}

using CaseMapping = void (*)(const char*, std::uint32_t, icu::StringPiece, icu::ByteSink&, icu::Edits*,
                             UErrorCode&);

std::string mapped(std::string_view text, CaseMapping mapping) {
    // ICU passes ill-formed bytes on.
    if (!isValidUtf8(text)) return mapped(repairedUtf8(text), mapping);
    std::string result;
    result.reserve(text.size());
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    mapping("", 0, icuPiece(text), sink, nullptr, status);
    requireSuccess(status, "CaseMap");
    return result;
}

} // namespace

std::string asciiLowercased(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), asciiLower);
    return result;
}

std::string asciiUppercased(std::string_view text) {
    std::string result(text);
    for (char& character : result)
        if (character >= 'a' && character <= 'z') character = static_cast<char>(character & ~0x20);
    return result;
}

std::string lowercased(std::string_view text) {
    return isAscii(text) ? asciiLowercased(text) : mapped(text, icu::CaseMap::utf8ToLower);
}

std::string uppercased(std::string_view text) {
    return isAscii(text) ? asciiUppercased(text) : mapped(text, icu::CaseMap::utf8ToUpper);
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (isAscii(a) && isAscii(b)) return std::ranges::equal(a, b, {}, asciiLower, asciiLower);
    return caseFolded(a) == caseFolded(b);
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    const std::string foldedText = caseFolded(text);
    const std::string foldedPart = caseFolded(part);
    // Two-way search: std::string::find takes quadratic time on repetitive text.
    return memmem(foldedText.data(), foldedText.size(), foldedPart.data(), foldedPart.size()) != nullptr;
}

} // namespace corvane::text
