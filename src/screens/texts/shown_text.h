// Texts of mail as the window shows them. What a message says is shown as its characters and nothing else:
// what would turn the reading direction of its neighbours, break the line or end the text for a C function is
// taken out, and no more than a limit is ever laid out. Thread-safe, linear in the limit, not in the text.
#pragma once

#include <string_view>

#include <QString>

namespace corvane::screens {

// Longer than any row or tooltip can show, in UTF-16 units.
inline constexpr qsizetype rowTextLimit = 300;

// One line: line ends, tabs and runs of blanks become one blank. What is cut away ends in "…".
QString shownLine(std::string_view text, qsizetype limit = rowTextLimit);

// The same with its lines.
QString shownText(std::string_view text, qsizetype limit);

// The name of a sender "name <address>", the whole where there is none.
QString shownSender(std::string_view sender);

// Nothing left out, for the clipboard. Ill-formed bytes become U+FFFD.
QString wholeText(std::string_view text);

} // namespace corvane::screens
