#include "mailstore/index/index_sql.h"

#include <iterator>

#include <fmt/format.h>

#include "mailstore/folders/mailbox_url.h"

namespace corvane::mailstore {

std::string quotedText(std::string_view value) {
    std::string quoted;
    quoted.reserve(value.size());
    for (const char c : value) {
        if (c == '\'')
            quoted += "''";
        else if (c == '\0' || c == '\n' || c == '\r')
            fmt::format_to(std::back_inserter(quoted), "'||char({})||'", static_cast<int>(c));
        else
            quoted += c;
    }
    return quoted;
}

std::string accountCondition(const std::vector<std::string>& accountURLPrefixes) {
    if (accountURLPrefixes.empty()) return {};
    std::vector<std::string> conditions;
    conditions.reserve(accountURLPrefixes.size());
    for (const std::string& prefix : accountURLPrefixes)
        conditions.push_back(fmt::format("mb.url LIKE '%{}%'", quotedText(withoutImapScheme(prefix))));
    return fmt::format("AND ({})", fmt::join(conditions, " OR "));
}

std::string localYearOf(std::string_view date) {
    return fmt::format("CAST(strftime('%Y', datetime({}, 'unixepoch', 'localtime')) AS INTEGER)", date);
}

} // namespace corvane::mailstore
