#include "mailstore/index/restored_mail_diagnostics.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/folders/message_file_index.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/index/excluded_mailboxes.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/reader_logs.h"
#include "mailstore/sqlite/shell_queries.h"
#include "platform/files/directory.h"
#include "text/charsets/encoding.h"
#include "text/split.h"

namespace corvane::mailstore {

namespace {

constexpr std::size_t sampleSize = 20;

struct MailboxYear {
    std::string year;
    std::int64_t mailboxID = 0;
    std::string mailboxURL;
    std::int64_t total = 0;
    std::int64_t withAttachments = 0;
    std::vector<std::int64_t> sample; // row ids
};

struct AccountTotals {
    std::int64_t total = 0;
    std::int64_t withAttachments = 0;
    std::int64_t excluded = 0;
    std::int64_t samplePresent = 0;
    std::int64_t sampleMissing = 0;
};

std::string diagnosticQuery(std::string_view accountURLPrefix) {
    return fmt::format(R"(SELECT
  strftime('%Y', datetime(COALESCE(NULLIF(m.display_date,0), NULLIF(m.date_received,0), NULLIF(m.date_sent,0)), 'unixepoch')) AS year,
  mb.ROWID AS mailboxID,
  mb.url AS mailboxURL,
  COUNT(*) AS total,
  SUM(CASE WHEN EXISTS (
        SELECT 1 FROM attachments a
        WHERE a.message = m.ROWID AND a.name IS NOT NULL AND a.name != ''
      ) THEN 1 ELSE 0 END) AS withAttachments,
  GROUP_CONCAT(m.ROWID, ',') AS rowIDs
FROM messages m
JOIN mailboxes mb ON mb.ROWID = m.mailbox
WHERE mb.url LIKE '%{}%'
  AND {} > 0
GROUP BY year, mb.ROWID, mb.url
ORDER BY year DESC, total DESC;)",
                       quotedText(withoutImapScheme(accountURLPrefix)), messageDateExpression);
}

// Ids from all over the list, since those of one time tend to share their fate.
std::vector<std::int64_t> sampleOf(std::string_view rowIDs) {
    const auto all = text::splitNonEmpty(rowIDs, ',');
    const std::size_t step = std::max<std::size_t>(1, all.size() / sampleSize);
    std::vector<std::int64_t> sample;
    for (std::size_t i = 0; i < all.size() && sample.size() < sampleSize; i += step) {
        if (const auto id = text::parseInteger(all[i])) sample.push_back(*id);
    }
    return sample;
}

MailboxYear mailboxYearOf(JsonRow& row) {
    MailboxYear result;
    result.year = row.text("year").value_or("");
    result.mailboxID = row.integer("mailboxID").value_or(0);
    result.mailboxURL = row.text("mailboxURL").value_or("");
    result.total = row.integer("total").value_or(0);
    result.withAttachments = row.integer("withAttachments").value_or(0);
    result.sample = sampleOf(row.text("rowIDs").value_or(""));
    return result;
}

// A foreign text that may hold anything stays on its line.
std::string onOneLine(std::string_view text) {
    std::string line(text);
    std::ranges::replace_if(line, [](char byte) { return static_cast<unsigned char>(byte) < 0x20; }, ' ');
    return line;
}

void logAccount(const MailStoreContext& context, const std::string& rootPath, const MailAccount& account,
                const std::set<std::int64_t>& trashAndJunk) {
    std::vector<MailboxYear> mailboxYears;
    if (!runJSONRows(context, diagnosticQuery(account.urlPrefix), envelopeIndexPath(rootPath),
                     [&](JsonRow& row) { mailboxYears.push_back(mailboxYearOf(row)); }))
        return; // the log says so already
    AccountTotals totals;
    for (const MailboxYear& each : mailboxYears) {
        const bool isExcluded = trashAndJunk.contains(each.mailboxID);
        const FilePresenceSample sample = sampleMessageFilePresence(rootPath, each.mailboxURL, each.sample);
        restoredMailDiagnosticLog(
            context.support,
            fmt::format("year={} mailbox=\"{}\" total={} withAttachments={} excludedTrashOrJunk={} "
                        "sampleEmlx=present:{} missing:{} checked:{}",
                        onOneLine(each.year), onOneLine(each.mailboxURL), each.total, each.withAttachments,
                        isExcluded, sample.present, sample.missing, sample.checked));
        totals.total += each.total;
        totals.withAttachments += each.withAttachments;
        totals.excluded += isExcluded ? each.total : 0;
        totals.samplePresent += sample.present;
        totals.sampleMissing += sample.missing;
    }
    restoredMailDiagnosticLog(
        context.support,
        fmt::format("account={} total={} withAttachments={} excludedTrashOrJunk={} sampleEmlxPresent={} "
                    "sampleEmlxMissing={}",
                    onOneLine(account.urlPrefix), totals.total, totals.withAttachments, totals.excluded,
                    totals.samplePresent, totals.sampleMissing));
}

} // namespace

void logRestoredMailDiagnostics(const MailStoreContext& context, const std::string& rootPath,
                                const std::vector<MailAccount>& accounts,
                                const std::vector<std::string>& selectedPrefixes) {
    restoredMailDiagnosticLog(
        context.support,
        fmt::format("start log=~/Library/Application Support/Corvane/restore-scan-diagnostic.log selected={}",
                    fmt::join(selectedPrefixes, ",")),
        LogStart::reset);
    if (!canQueryEnvelopeIndex(context, rootPath)) {
        restoredMailDiagnosticLog(context.support, "stop reason=no-sqlite-or-envelope-index");
        return;
    }
    const auto trashAndJunk = trashAndJunkMailboxIDs(context, envelopeIndexPath(rootPath));
    if (!trashAndJunk) return; // the other log says so
    for (const MailAccount& account : accounts) {
        if (context.stop.stop_requested()) return;
        if (std::ranges::find(selectedPrefixes, account.urlPrefix) != selectedPrefixes.end())
            logAccount(context, rootPath, account, *trashAndJunk);
    }
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
