#include "mailstore/index/index_sql.h"

#include <fmt/format.h>

#include "mailstore/folders/mailbox_url.h"
#include "text/split.h"

namespace corvane::mailstore {

std::string quotedText(std::string_view value) {
    return text::replacingAll(value, "'", "''");
}

std::string accountCondition(const std::vector<std::string>& accountURLPrefixes) {
    if (accountURLPrefixes.empty()) return {};
    std::vector<std::string> conditions;
    conditions.reserve(accountURLPrefixes.size());
    for (const std::string& prefix : accountURLPrefixes)
        conditions.push_back(fmt::format("mb.url LIKE '%{}%'", quotedText(withoutImapScheme(prefix))));
    return fmt::format("AND ({})", fmt::join(conditions, " OR "));
}

} // namespace corvane::mailstore
