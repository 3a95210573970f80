// What a row of the library shows of a mail's text: its beginning, or the place where a search found
// something. Pure functions, linear in the text, any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "text/case_search.h"

namespace corvane::mime {

// One line of at most 300 user-perceived characters; nullopt for a text that shows none.
std::optional<std::string> rowPreviewText(std::string_view text);

struct Snippet {
    std::string text;                         // one line
    std::vector<text::ByteRange> highlighted; // every place of the query in it

    friend bool operator==(const Snippet&, const Snippet&) = default;
};

// In user-perceived characters.
struct SnippetRoom {
    std::size_t padding = 24;   // before the match
    std::size_t maxLength = 90; // of all, the query included, unless the query alone is longer
};

// The text around the first place of the query, in either case; nullopt for a blank query or one that the
// text doesn't hold.
std::optional<Snippet> snippet(std::string_view text, std::string_view query, const SnippetRoom& room = {});

// The places of a query, which is trimmed first, in a text that is shown; empty for a blank one.
std::vector<text::ByteRange> searchHighlights(std::string_view text, std::string_view query);

// Whether a row has nothing but its text to show why a search found it.
bool needsBodySnippet(std::string_view query, std::string_view subject, std::string_view sender,
                      std::span<const std::string> attachmentNames);

} // namespace corvane::mime
