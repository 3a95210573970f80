// The text of an archived mail in the pieces in which the reading pane shows it: message, signature, quoted
// history. Pure functions, linear in the text, any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "mime/body/body_split.h"

namespace corvane::mime {

enum class SegmentStyle { body, signature, quoted, quotedHeader, quotedSignature };

// The style's name in documents for other programs.
std::string_view rawValue(SegmentStyle style);

struct Segment {
    std::string text;
    SegmentStyle style = SegmentStyle::body;

    friend bool operator==(const Segment&, const Segment&) = default;
};

// Names that a folded line of recipients keeps.
inline constexpr std::size_t shownRecipientNames = 4;

// Every line of more than `maxNames` recipients with its first ones and the number of the others; all other
// lines as they are.
std::string foldRecipientLines(std::string_view text, std::size_t maxNames);

// Quoted history at its markers, which are in none of the segments; empty for an empty text.
std::vector<Segment> parseQuotedSegments(std::string_view text);

struct ShownParts {
    bool showQuoted = false;
    bool quotedRecipientsExpanded = false;
};

// All that is shown, separators included; the body always comes first, also an empty one.
std::vector<Segment> bodySegments(const BodyParts& parts, const ShownParts& shown);

} // namespace corvane::mime
