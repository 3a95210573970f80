#include "mime/body/body_split.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "mime/body/body_line_rules.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

constexpr std::size_t longestLookback = 12;
constexpr std::size_t contactWindow = 6;

struct TextHalves {
    std::string_view before;
    std::string_view behind;
};

// Around the first marker, trimmed; nullopt without one, or with nothing on one side of it.
std::optional<TextHalves> halvesAtMarker(std::string_view text, std::string_view marker) {
    const std::size_t found = text.find(marker);
    if (found == std::string_view::npos) return std::nullopt;
    const TextHalves halves{text::trimWhitespaceAndNewlines(text.substr(0, found)),
                            text::trimWhitespaceAndNewlines(text.substr(found + marker.size()))};
    if (halves.before.empty() || halves.behind.empty()) return std::nullopt;
    return halves;
}

// A text by its lines. Whether a part of it holds anything but white space is known without looking at it, so
// that any number of attempts to cut costs no more than one.
class TextLines {
  public:
    explicit TextLines(std::string_view text)
      : text_(text)
      , lines_(text::splitText(text, '\n'))
      , filled_(text::trimWhitespaceAndNewlines(text)) {}

    [[nodiscard]] std::size_t count() const { return lines_.size(); }

    [[nodiscard]] std::string_view line(std::size_t index) const { return lines_[index]; }

    [[nodiscard]] std::string_view trimmed(std::size_t index) const {
        return text::trimBlanks(lines_[index]);
    }

    [[nodiscard]] bool hasTextBefore(std::size_t index) const {
        return !filled_.empty() && filled_.data() < lines_[index].data();
    }

    // From the line to the end; empty behind the last one.
    [[nodiscard]] std::string_view from(std::size_t index) const {
        return index == count() ? text_.substr(text_.size()) : text_.substr(startOf(index));
    }

    // The lines before one, without the "\n" of the last of them.
    [[nodiscard]] std::string_view before(std::size_t index) const {
        return text_.substr(0, index == 0 ? 0 : startOf(index) - 1);
    }

    // The body before line `end` and the signature from line `start` on, both trimmed; nullopt when one of
    // them is empty.
    [[nodiscard]] std::optional<SignatureSplit> cut(std::size_t end, std::size_t start) const {
        const bool hasSignature = start < count() && lines_[start].data() < filled_.data() + filled_.size();
        if (!hasTextBefore(end) || !hasSignature) return std::nullopt;
        return SignatureSplit{text::trimWhitespaceAndNewlines(before(end)),
                              text::trimWhitespaceAndNewlines(from(start))};
    }

  private:
    [[nodiscard]] std::size_t startOf(std::size_t index) const {
        return static_cast<std::size_t>(lines_[index].data() - text_.data());
    }

    std::string_view text_;
    std::vector<std::string_view> lines_;
    std::string_view filled_; // without the white space around it
};

// The line with which the block above a line of a signature begins.
std::size_t blockStart(const TextLines& lines, std::size_t index) {
    const std::size_t first = index > longestLookback + 1 ? index - longestLookback : 1;
    for (std::size_t above = index; above > first; --above) {
        const std::string_view line = lines.trimmed(above - 1);
        if (line.empty() || isLikelyBodyLine(line)) return above;
    }
    return first;
}

std::optional<SignatureSplit> cutAtDelimiter(const TextLines& lines) {
    for (std::size_t index = 1; index < lines.count(); ++index) {
        if (lines.trimmed(index) != "--") continue;
        if (auto split = lines.cut(index, index + 1)) return split;
    }
    return std::nullopt;
}

std::optional<SignatureSplit> cutAtBlock(const TextLines& lines, std::size_t index) {
    const std::size_t start = blockStart(lines, index);
    return lines.cut(start, start);
}

std::optional<SignatureSplit> cutAtDisclaimer(const TextLines& lines) {
    for (std::size_t index = 1; index < lines.count(); ++index) {
        if (!isDisclaimer(lines.trimmed(index))) continue;
        if (auto split = cutAtBlock(lines, index)) return split;
    }
    return std::nullopt;
}

std::optional<SignatureSplit> cutAtContacts(const TextLines& lines) {
    for (std::size_t index = 1; index < lines.count(); ++index) {
        if (!isContactLine(lines.line(index))) continue;
        const std::size_t end = std::min(index + contactWindow, lines.count());
        bool hasSecond = false;
        for (std::size_t other = index + 1; other < end && !hasSecond; ++other)
            hasSecond = isContactLine(lines.line(other));
        if (!hasSecond) continue;
        if (auto split = cutAtBlock(lines, index)) return split;
    }
    return std::nullopt;
}

} // namespace

QuotedSplit splitQuoted(std::string_view text) {
    if (const auto halves = halvesAtMarker(text, quoteMarker)) return {halves->before, halves->behind};
    const TextLines lines(text);
    for (std::size_t index = 1; index < lines.count(); ++index) {
        if (lines.hasTextBefore(index) && isQuoteBoundary(lines.line(index)))
            return {text::trimWhitespaceAndNewlines(lines.before(index)), lines.from(index)};
    }
    return {text, std::nullopt};
}

SignatureSplit splitSignature(std::string_view text) {
    if (const auto halves = halvesAtMarker(text, signatureMarker)) return {halves->before, halves->behind};
    const TextLines lines(text);
    auto split = cutAtDelimiter(lines);
    if (!split) split = cutAtDisclaimer(lines);
    if (!split) split = cutAtContacts(lines);
    return split ? *split : SignatureSplit{text, std::nullopt};
}

std::string withoutMarkers(std::string_view text) {
    return text::replacingAll(text::replacingAll(text, quoteMarker, ""), signatureMarker, "");
}

BodyParts splitBody(std::string_view text) {
    const QuotedSplit history = splitQuoted(text);
    const SignatureSplit split = splitSignature(history.main);
    BodyParts parts;
    parts.bodyText = text::trimWhitespaceAndNewlines(withoutMarkers(split.body));
    if (split.signature)
        parts.signatureText = text::trimWhitespaceAndNewlines(withoutMarkers(*split.signature));
    if (history.quoted) parts.quotedText = *history.quoted;
    return parts;
}

} // namespace corvane::mime
