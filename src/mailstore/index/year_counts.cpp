#include "mailstore/index/year_counts.h"

#include <fmt/format.h>

#include "mailstore/folders/store_location.h"
#include "mailstore/index/excluded_mailboxes.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/sqlite/shell_queries.h"
#include "text/charsets/encoding.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

std::string isCounted() {
    return fmt::format("{} > 0 AND m.message_id IS NOT NULL AND m.message_id != 0", messageDateExpression);
}

std::optional<std::int64_t> trimmedInteger(std::string_view text) {
    return text::parseInteger(text::trimWhitespaceAndNewlines(text));
}

} // namespace

std::optional<YearCounts> indexedYearDistinctCounts(const MailStoreContext& context,
                                                    const std::string& rootPath,
                                                    const std::vector<std::string>& accountURLPrefixes) {
    if (!canQueryEnvelopeIndex(context, rootPath)) return YearCounts();
    const std::string index = envelopeIndexPath(rootPath);
    const auto messages = messagesWhere(isCounted(), context, index, accountURLPrefixes);
    if (!messages) return std::nullopt;
    const std::string sql =
        fmt::format("SELECT {} AS y,\n       COUNT(DISTINCT m.message_id) AS cnt\n{}\nGROUP BY y;",
                    localYearOf(messageDateExpression), *messages);
    const auto output = runLongQuery(context, sql, index);
    if (!output) return std::nullopt;
    YearCounts counts;
    for (const std::string_view line : text::splitNonEmpty(*output, '\n')) {
        const auto columns = text::splitText(line, '|');
        if (columns.size() != 2) continue;
        const auto year = trimmedInteger(columns[0]);
        const auto count = trimmedInteger(columns[1]);
        if (year && count) counts[*year] = *count;
    }
    return counts;
}

std::optional<std::int64_t> queryOldestIndexedYear(const MailStoreContext& context,
                                                   const std::string& rootPath) {
    if (!canQueryEnvelopeIndex(context, rootPath)) return std::nullopt;
    const auto output = runLongQuery(context, R"(SELECT strftime('%Y',
  datetime(COALESCE(NULLIF(display_date,0), NULLIF(date_received,0), NULLIF(date_sent,0)), 'unixepoch')
)
FROM messages
WHERE COALESCE(NULLIF(display_date,0), NULLIF(date_received,0), NULLIF(date_sent,0), 0) > 0
ORDER BY COALESCE(NULLIF(display_date,0), NULLIF(date_received,0), NULLIF(date_sent,0)) ASC
LIMIT 1;)",
                                     envelopeIndexPath(rootPath));
    return output ? trimmedInteger(*output) : std::nullopt;
}

} // namespace corvane::mailstore
