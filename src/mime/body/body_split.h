// The text of a mail cut into the message itself, the sender's signature and the quoted history. Where the
// text was made from markup, markers of private-use characters tell the places; elsewhere its lines do. Pure
// functions on UTF-8 with "\n" line ends, linear in the text, any thread. Views are parts of the argument.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane::mime {

// Stand in a body before its signature and before a quoted mail. They are never shown.
inline constexpr std::string_view signatureMarker = "\uF0F0SIG\uF0F0";
inline constexpr std::string_view quoteMarker = "\uF0F1QUOTE\uF0F1";

struct QuotedSplit {
    std::string_view main;
    std::optional<std::string_view> quoted; // nullopt: the whole text is main
};

// A text of one line is never split, and neither part of a split is empty. The quoted part is untrimmed where
// a line tells its place.
QuotedSplit splitQuoted(std::string_view text);

struct SignatureSplit {
    std::string_view body;
    std::optional<std::string_view> signature; // nullopt: the whole text is body
};

// By the marker, else the first "--", else a disclaimer, else lines of contact; never from the first line on.
SignatureSplit splitSignature(std::string_view text);

// Without both markers.
std::string withoutMarkers(std::string_view text);

// The three parts of an archived mail's text.
struct BodyParts {
    std::string bodyText;
    std::optional<std::string> signatureText; // may be empty
    std::optional<std::string> quotedText;    // with its markers

    // Whether the history is folded away: not during a search, whose hit may lie in it.
    [[nodiscard]] bool canCollapse(std::string_view query) const {
        return query.empty() && quotedText.has_value();
    }

    [[nodiscard]] bool showQuoted(std::string_view query, bool quotedExpanded) const {
        return quotedText.has_value() && (!query.empty() || quotedExpanded);
    }

    friend bool operator==(const BodyParts&, const BodyParts&) = default;
};

BodyParts splitBody(std::string_view text);

} // namespace corvane::mime
