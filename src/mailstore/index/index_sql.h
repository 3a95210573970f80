// Pieces of SQL that the questions to the index share. The shell takes no parameters, so values stand in the
// text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane::mailstore {

// The text for the inside of a literal; the quotes around it are the caller's. Line ends and NULs, which the
// shell would change in what it reads, are put together from their numbers.
std::string quotedText(std::string_view value);

// "AND (...)" over `mb.url`; empty for no prefixes, which is every account.
std::string accountCondition(const std::vector<std::string>& accountURLPrefixes);

// The date of a message in `messages m`, 0 for none.
inline constexpr std::string_view messageDateExpression =
    "COALESCE(NULLIF(m.display_date,0), NULLIF(m.date_received,0), NULLIF(m.date_sent,0), 0)";

// The local year of a date in seconds.
std::string localYearOf(std::string_view date);

} // namespace corvane::mailstore
