#include "library/threads/subject_key.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "text/case.h"
#include "text/charsets/ascii.h"
#include "text/graphemes.h"
#include "text/trim.h"

namespace corvane {

namespace {

// No character but their own capitals becomes one of these letters in lower case, so ASCII rules will do.
constexpr auto prefixes = std::to_array<std::string_view>(
    {"re:", "re：", "fw:", "fwd:", "回复:", "回复：", "答复:", "答复：", "转发:", "转发：", "转:", "转："});
constexpr std::size_t longestFuzzedNumber = 8;

bool startsWithLower(std::string_view text, std::string_view lowerPrefix) {
    return text.size() >= lowerPrefix.size() &&
           std::ranges::equal(text.substr(0, lowerPrefix.size()), lowerPrefix, {}, text::asciiLower);
}

std::string_view withoutReplyPrefixes(std::string_view subject) {
    while (true) {
        const auto* const prefix = std::ranges::find_if(
            prefixes, [&](std::string_view candidate) { return startsWithLower(subject, candidate); });
        if (prefix == prefixes.end()) return subject;
        subject = text::trimBlanks(subject.substr(prefix->size()));
    }
}

// The end of the number that begins at `start`. A digit with a mark on it, as in the emoji of a keycap,
// belongs to none.
std::size_t endOfNumber(std::string_view text, std::size_t start) {
    std::size_t end = start;
    while (end < text.size() && text::isAsciiDigit(text[end])) ++end;
    if (end > start && text::beginsWithMark(text.substr(end))) --end;
    return end;
}

} // namespace

std::string fuzzeSubjectNumbers(std::string_view text) {
    std::string fuzzed;
    fuzzed.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        at = endOfNumber(text, start);
        if (at - start > longestFuzzedNumber) {
            fuzzed.append(text.substr(start, at - start));
        } else if (at > start) {
            fuzzed.push_back('#');
        } else {
            fuzzed.push_back(text[at++]);
        }
    }
    return fuzzed;
}

std::string subjectKeyOrEmpty(std::string_view subject) {
    return text::lowercased(
        fuzzeSubjectNumbers(withoutReplyPrefixes(text::trimWhitespaceAndNewlines(subject))));
}

std::string normalizedSubjectKey(std::string_view subject, std::string_view fallbackID) {
    std::string key = subjectKeyOrEmpty(subject);
    if (!key.empty()) return key;
    key.append(noSubjectPrefix).append(fallbackID);
    return key;
}

} // namespace corvane
