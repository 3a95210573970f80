#include "mime/body/body_segments.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "mime/body/body_line_rules.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mime {

namespace {

constexpr std::string_view signatureSeparator = "\n\n──────────  签名  ──────────\n";
constexpr std::string_view quotedSeparator = "\n\n──────────  引用的历史邮件  ──────────\n";

// Separators are one byte or a Chinese comma or semicolon.
std::vector<std::string_view> recipientNames(std::string_view text) {
    static constexpr auto separators = std::to_array<std::string_view>({";", "；", ",", "，"});
    std::vector<std::string_view> names;
    const auto add = [&](std::string_view name) {
        name = text::trimBlanks(name);
        if (!name.empty()) names.push_back(name);
    };
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view rest = text.substr(at);
        const auto* const separator = std::ranges::find_if(
            separators, [&](std::string_view candidate) { return rest.starts_with(candidate); });
        if (separator == separators.end()) {
            ++at;
            continue;
        }
        add(text.substr(start, at - start));
        start = at += separator->size();
    }
    add(text.substr(start));
    return names;
}

void appendFolded(std::string& folded, std::string_view line, std::size_t maxNames) {
    const std::string_view label = recipientLabel(line);
    if (label.empty()) {
        folded.append(line);
        return;
    }
    const std::vector<std::string_view> names = recipientNames(text::trimBlanks(line).substr(label.size()));
    if (names.size() <= maxNames) {
        folded.append(line);
        return;
    }
    const auto shown = names.begin() + static_cast<std::ptrdiff_t>(maxNames);
    fmt::format_to(std::back_inserter(folded), "{} {}  …及其他 {} 个", label,
                   fmt::join(names.begin(), shown, "；"), names.size() - maxNames);
}

// The next marker of one kind, looked for again only when the last one was passed.
class MarkerSearch {
  public:
    MarkerSearch(std::string_view text, std::string_view marker)
      : text_(text)
      , marker_(marker) {}

    // npos when there is none.
    std::size_t next(std::size_t from) {
        if (found_ < from || !isFound_) found_ = text_.find(marker_, from);
        isFound_ = true;
        return found_;
    }

    [[nodiscard]] std::size_t length() const { return marker_.size(); }

  private:
    std::string_view text_;
    std::string_view marker_;
    std::size_t found_ = 0;
    bool isFound_ = false;
};

void addQuoted(std::vector<Segment>& segments, std::string_view slice, SegmentStyle style) {
    slice = text::trimWhitespaceAndNewlines(slice);
    if (slice.empty()) return;
    if (!segments.empty()) segments.push_back({"\n\n", style});
    segments.push_back({std::string(slice), style});
}

} // namespace

std::string_view rawValue(SegmentStyle style) {
    static constexpr std::array<std::string_view, 5> names = {"body", "signature", "quoted", "quotedHeader",
                                                              "quotedSignature"};
    return names[static_cast<std::size_t>(style)];
}

std::string foldRecipientLines(std::string_view text, std::size_t maxNames) {
    std::string folded;
    folded.reserve(text.size());
    while (true) {
        const std::size_t end = text.find('\n');
        appendFolded(folded, text.substr(0, end), maxNames);
        if (end == std::string_view::npos) return folded;
        folded.push_back('\n');
        text.remove_prefix(end + 1);
    }
}

std::vector<Segment> parseQuotedSegments(std::string_view text) {
    std::vector<Segment> segments;
    MarkerSearch signatures(text, signatureMarker);
    MarkerSearch quotes(text, quoteMarker);
    SegmentStyle style = SegmentStyle::quoted;
    for (std::size_t cursor = 0; cursor < text.size();) {
        const std::size_t signature = signatures.next(cursor);
        const std::size_t quote = quotes.next(cursor);
        const std::size_t marker = std::min(signature, quote);
        addQuoted(segments, text.substr(cursor, marker - cursor), style);
        if (marker == std::string_view::npos) break;
        style = signature < quote ? SegmentStyle::quotedSignature : SegmentStyle::quoted;
        cursor = marker + (signature < quote ? signatures : quotes).length();
    }
    return segments;
}

std::vector<Segment> bodySegments(const BodyParts& parts, const ShownParts& shown) {
    std::vector<Segment> segments = {{parts.bodyText, SegmentStyle::body}};
    if (parts.signatureText && !parts.signatureText->empty()) {
        segments.push_back({std::string(signatureSeparator), SegmentStyle::signature});
        segments.push_back({*parts.signatureText, SegmentStyle::signature});
    }
    if (shown.showQuoted && parts.quotedText && !parts.quotedText->empty()) {
        segments.push_back({std::string(quotedSeparator), SegmentStyle::quotedHeader});
        auto quoted = parseQuotedSegments(shown.quotedRecipientsExpanded
                                              ? *parts.quotedText
                                              : foldRecipientLines(*parts.quotedText, shownRecipientNames));
        std::ranges::move(quoted, std::back_inserter(segments));
    }
    return segments;
}

} // namespace corvane::mime
