#include "mime/body/body_snippets.h"

#include <algorithm>

#include "mime/body/body_split.h"
#include "text/case.h"
#include "text/charsets/utf8_step.h"
#include "text/graphemes.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

constexpr std::size_t previewedCharacters = 4000;
constexpr std::size_t rowCharacters = 300;

// One blank for each run of white space, none at the ends.
std::string inOneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    bool isGap = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const auto character = text::nextScalar(text, at);
        if (character >= 0 && text::isWhitespaceOrNewline(static_cast<char32_t>(character))) {
            isGap = true;
            continue;
        }
        if (isGap && !line.empty()) line.push_back(' ');
        isGap = false;
        line.append(text.substr(start, at - start));
    }
    return line;
}

std::string markersReplaced(std::string_view text, std::string_view replacement) {
    return text::replacingAll(text::replacingAll(text, signatureMarker, replacement), quoteMarker,
                              replacement);
}

} // namespace

std::optional<std::string> rowPreviewText(std::string_view text) {
    std::string shown = markersReplaced(text::graphemePrefix(text, previewedCharacters), "");
    // Of a marker that was cut.
    for (const std::string_view stray : {"\uF0F0", "\uF0F1"}) shown = text::replacingAll(shown, stray, "");
    const std::string line = inOneLine(shown);
    if (line.empty()) return std::nullopt;
    return std::string(text::graphemePrefix(line, rowCharacters));
}

std::optional<Snippet> snippet(std::string_view text, std::string_view query, const SnippetRoom& room) {
    const std::string_view wanted = text::trimBlanks(query);
    if (wanted.empty()) return std::nullopt;
    const std::string cleaned = markersReplaced(text, " ");
    const std::string_view all = cleaned;
    const auto match = text::firstRangeIgnoringCase(all, wanted);
    if (!match) return std::nullopt;
    const std::string_view before = text::graphemeSuffix(all.substr(0, match->start), room.padding);
    const std::size_t taken = room.padding + text::graphemeCount(wanted);
    const std::string_view behind =
        text::graphemePrefix(all.substr(match->end()), room.maxLength > taken ? room.maxLength - taken : 0);
    const std::size_t start = match->start - before.size();
    const std::size_t end = match->end() + behind.size();
    Snippet result;
    if (start > 0) result.text = "…";
    result.text += inOneLine(all.substr(start, end - start));
    if (end < all.size()) result.text += "…";
    result.highlighted = text::rangesIgnoringCase(result.text, wanted);
    return result;
}

std::vector<text::ByteRange> searchHighlights(std::string_view text, std::string_view query) {
    return text::rangesIgnoringCase(text, text::trimBlanks(query));
}

bool needsBodySnippet(std::string_view query, std::string_view subject, std::string_view sender,
                      std::span<const std::string> attachmentNames) {
    const std::string_view wanted = text::trimBlanks(query);
    if (wanted.empty()) return false;
    return !text::containsIgnoringCase(subject, wanted) && !text::containsIgnoringCase(sender, wanted) &&
           std::ranges::none_of(attachmentNames, [&](const std::string& name) {
               return text::containsIgnoringCase(name, wanted);
           });
}

} // namespace corvane::mime
