#include "mailstore/index/year_counts.h"

#include <algorithm>
#include <tuple>

#include <fmt/format.h>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/folders/message_file_index.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/index/excluded_mailboxes.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/sqlite/shell_queries.h"
#include "platform/files/directory.h"
#include "text/charsets/encoding.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

std::string localYearOf(std::string_view date) {
    return fmt::format("CAST(strftime('%Y', datetime({}, 'unixepoch', 'localtime')) AS INTEGER)", date);
}

std::string isCounted() {
    return fmt::format("{} > 0 AND m.message_id IS NOT NULL AND m.message_id != 0", messageDateExpression);
}

// From FROM to the end of WHERE; nullopt when the mailboxes couldn't be read.
std::optional<std::string> messagesWhere(const std::string& condition, const MailStoreContext& context,
                                         const std::string& index,
                                         const std::vector<std::string>& accountURLPrefixes) {
    const auto trashAndJunk = trashAndJunkMailboxIDs(context, index);
    if (!trashAndJunk) return std::nullopt;
    return fmt::format("FROM messages m\n"
                       "JOIN mailboxes mb ON mb.ROWID = m.mailbox\n"
                       "WHERE {} {} {}",
                       condition, accountCondition(accountURLPrefixes), mailboxExclusion(*trashAndJunk));
}

std::optional<std::int64_t> trimmedInteger(std::string_view text) {
    return text::parseInteger(text::trimWhitespaceAndNewlines(text));
}

struct Copy {
    std::int64_t year = 0;
    std::int64_t message = 0;
    // What is here of it: `some` is a part, or nobody can look. Of the copies of a message the one of which
    // most is here comes first.
    enum class Part { whole, some, none } part = Part::none;

    friend auto operator<=>(const Copy&, const Copy&) = default;
};

Copy::Part partOf(MessageFileIndex& files, std::string_view mailboxURL, std::int64_t rowID) {
    if (files.existingFilePath(mailboxURL, rowID)) return Copy::Part::whole;
    const bool mayBeHere = files.hasPartialFile(mailboxURL, rowID) || files.isOutOfSight(mailboxURL, rowID);
    return mayBeHere ? Copy::Part::some : Copy::Part::none;
}

// Counts the messages whose first copy has no file.
void countUndownloaded(std::vector<Copy> copies, UndownloadedYears& counts) {
    std::ranges::sort(copies);
    const auto isSameMessage = [](const Copy& a, const Copy& b) {
        return a.year == b.year && a.message == b.message;
    };
    const auto repeated = std::ranges::unique(copies, isSameMessage);
    copies.erase(repeated.begin(), repeated.end());
    for (const Copy& copy : copies) {
        if (copy.part != Copy::Part::whole) ++counts.all[copy.year];
        if (copy.part == Copy::Part::some) ++counts.partial[copy.year];
    }
}

// The same by the year of receipt, where a copy of another year keeps a message from being the server's
// alone.
void countByReceipt(std::vector<Copy> copies, UndownloadedYears& counts) {
    std::ranges::sort(copies, {},
                      [](const Copy& copy) { return std::tuple(copy.message, copy.part, copy.year); });
    const Copy* first = nullptr;
    const Copy* counted = nullptr;
    for (const Copy& copy : copies) {
        if (first == nullptr || first->message != copy.message) first = &copy;
        const bool isRepeated =
            counted != nullptr && counted->message == copy.message && counted->year == copy.year;
        if (first->part == Copy::Part::whole || isRepeated) continue;
        counted = &copy;
        ++(first->part == Copy::Part::some ? counts.partialByReceipt : counts.aloneByReceipt)[copy.year];
    }
}

// Gathers what the rows of the index say.
class UndownloadedCount {
  public:
    explicit UndownloadedCount(const std::string& rootPath)
      : files_(rootPath) {}

    void add(JsonRow& row) {
        const auto rowID = row.integer("rid");
        const auto message = row.integer("mid");
        const auto url = row.text("url");
        const auto year = row.integer("y");
        const auto receivedYear = row.integer("ry");
        if (!rowID || !url || (!year && !receivedYear)) return;
        const Copy::Part part = partOf(files_, *url, *rowID);
        const bool hasMessage = message && *message != 0;
        if (hasMessage && year) copies_.push_back({.year = *year, .message = *message, .part = part});
        const std::int64_t found = receivedYear.value_or(year.value_or(0));
        if (part == Copy::Part::whole) counts_.stored.push_back({*rowID, found});
        if (hasMessage)
            byReceipt_.push_back({.year = found, .message = *message, .part = part});
        else if (part != Copy::Part::whole)
            ++(part == Copy::Part::some ? counts_.partialByReceipt : counts_.aloneByReceipt)[found];
    }

    UndownloadedYears result() {
        countUndownloaded(std::move(copies_), counts_);
        countByReceipt(std::move(byReceipt_), counts_);
        return std::move(counts_);
    }

  private:
    MessageFileIndex files_;
    std::vector<Copy> copies_;
    std::vector<Copy> byReceipt_;
    UndownloadedYears counts_;
};

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

std::optional<UndownloadedYears> undownloadedYears(const MailStoreContext& context,
                                                   const std::string& rootPath,
                                                   const std::vector<std::string>& accountURLPrefixes) {
    if (!canQueryEnvelopeIndex(context, rootPath)) return UndownloadedYears();
    const std::string index = envelopeIndexPath(rootPath);
    const std::string hasDate = fmt::format("({} > 0 OR m.date_received > 0)", messageDateExpression);
    const auto messages = messagesWhere(hasDate, context, index, accountURLPrefixes);
    if (!messages) return std::nullopt;
    const std::string sql = fmt::format("SELECT m.ROWID AS rid, m.message_id AS mid, mb.url AS url,\n"
                                        "       CASE WHEN {} > 0 THEN {} END AS y,\n       CASE WHEN "
                                        "m.date_received > 0 THEN {} END AS ry\n{};",
                                        messageDateExpression, localYearOf(messageDateExpression),
                                        localYearOf("m.date_received"), *messages);
    UndownloadedCount count(rootPath);
    if (!runJSONRows(context, sql, index, [&](JsonRow& row) { count.add(row); })) return std::nullopt;
    return count.result();
}

std::optional<YearCounts> undownloadedYearCounts(const MailStoreContext& context, const std::string& rootPath,
                                                 const std::vector<std::string>& accountURLPrefixes) {
    auto counts = undownloadedYears(context, rootPath, accountURLPrefixes);
    if (!counts) return std::nullopt;
    return std::move(counts->all);
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

FilePresenceSample sampleMessageFilePresence(const std::string& rootPath, const std::string& mailboxURL,
                                             const std::vector<std::int64_t>& rowIDs) {
    FilePresenceSample sample;
    MessageFileIndex files(rootPath);
    for (const std::int64_t rowID : rowIDs) {
        // A few rows: a look at each file costs less than a listing of their folders.
        const auto path = files.filePath(mailboxURL, rowID);
        (path && platform::isRegularFile(*path) ? sample.present : sample.missing) += 1;
    }
    sample.checked = sample.present + sample.missing;
    return sample;
}

} // namespace corvane::mailstore
