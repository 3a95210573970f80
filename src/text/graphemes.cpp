#include "text/graphemes.h"

#include <limits>
#include <memory>

#include <unicode/brkiter.h>
#include <unicode/uchar.h>

#include "text/charsets/ascii.h"
#include "text/charsets/utf8_step.h"
#include "text/icu_text.h"

namespace corvane::text {

namespace {

std::unique_ptr<icu::BreakIterator> makeClusterBreaks() {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    requireSuccess(status, "BreakIterator::createCharacterInstance");
    return breaks;
}

// At the start of the text, until the next call on this thread.
icu::BreakIterator& clusterBreaksOf(Utf8Text& text) {
    // Break iterators aren't thread-safe and cost much more to make than to use.
    thread_local const std::unique_ptr<icu::BreakIterator> breaks = makeClusterBreaks();
    UErrorCode status = U_ZERO_ERROR;
    breaks->setText(text.get(), status);
    requireSuccess(status, "BreakIterator::setText");
    return *breaks;
}

struct Prefix {
    std::size_t clusters = 0;
    std::size_t bytes = 0;
};

// The clusters at the start that are surely complete: an ASCII character is one, with CR LF as the exception,
// unless what follows it might extend it.
Prefix asciiClusters(std::string_view text, std::size_t maxClusters, std::size_t maxBytes) noexcept {
    Prefix prefix;
    while (prefix.clusters < maxClusters && prefix.bytes < text.size()) {
        const std::size_t length = text.substr(prefix.bytes, 2) == "\r\n" ? 2 : 1;
        const std::size_t end = prefix.bytes + length;
        if (end > maxBytes || !isAscii(text.substr(prefix.bytes, length + 1))) break;
        prefix = {prefix.clusters + 1, end};
    }
    return prefix;
}

// The longest prefix of whole clusters within both limits.
Prefix clusterPrefix(std::string_view text, std::size_t maxClusters, std::size_t maxBytes) {
    Prefix prefix = asciiClusters(text, maxClusters, maxBytes);
    if (prefix.bytes == text.size() || prefix.clusters == maxClusters || prefix.bytes >= maxBytes)
        return prefix;
    const std::size_t start = prefix.bytes;
    Utf8Text rest(text.substr(start));
    icu::BreakIterator& breaks = clusterBreaksOf(rest);
    while (prefix.clusters < maxClusters) {
        const std::int32_t end = breaks.next();
        if (end == icu::BreakIterator::DONE || start + static_cast<std::size_t>(end) > maxBytes) break;
        prefix = {prefix.clusters + 1, start + static_cast<std::size_t>(end)};
    }
    return prefix;
}

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

std::size_t columnsOf(UChar32 character) {
    if (character < 0) character = 0xFFFD;
    const int category = u_charType(character);
    if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR) return 0;
    const int eastAsian = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return eastAsian == U_EA_WIDE || eastAsian == U_EA_FULLWIDTH ? 2 : 1;
}

} // namespace

std::size_t graphemeCount(std::string_view text) {
    return clusterPrefix(text, unlimited, unlimited).clusters;
}

std::string_view graphemePrefix(std::string_view text, std::size_t count) {
    return text.substr(0, clusterPrefix(text, count, unlimited).bytes);
}

std::string_view graphemeSuffix(std::string_view text, std::size_t count) {
    if (count == 0) return text.substr(text.size());
    Utf8Text whole(text);
    icu::BreakIterator& breaks = clusterBreaksOf(whole);
    std::int32_t start = breaks.last();
    for (; count > 0 && start > 0; --count) start = breaks.previous();
    return text.substr(static_cast<std::size_t>(start));
}

std::string_view graphemePrefixWithinBytes(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    return text.substr(0, clusterPrefix(text, unlimited, bytes).bytes);
}

bool beginsWithMark(std::string_view text) noexcept {
    if (text.empty() || isAscii(text.substr(0, 1))) return false;
    std::size_t at = 0;
    const UChar32 first = nextScalar(text, at);
    return first >= 0 && u_hasBinaryProperty(first, UCHAR_GRAPHEME_EXTEND) != 0;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t at = 0; at < text.size();) width += columnsOf(nextScalar(text, at));
    return width;
}

std::string_view prefixWithinWidth(std::string_view text, std::size_t columns) {
    std::size_t width = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        width += columnsOf(nextScalar(text, at));
        if (width > columns) return text.substr(0, start);
    }
    return text;
}

} // namespace corvane::text
