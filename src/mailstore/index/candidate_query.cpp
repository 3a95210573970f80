#include "mailstore/index/candidate_query.h"

#include <chrono>
#include <string_view>

#include <fmt/format.h>

#include "mailstore/index/index_sql.h"
#include "mailstore/sqlite/mail_index_query_error.h"

namespace corvane::mailstore {

namespace {

constexpr std::string_view query = R"(SELECT
  m.ROWID AS rowid,
  mb.url AS url,
  COALESCE(m.subject_prefix, '') || COALESCE(sub.subject, '') AS subject,
  COALESCE(senderAddress.comment, '') AS senderName,
  COALESCE(senderAddress.address, '') AS senderAddress,
  COALESCE((
    SELECT GROUP_CONCAT(
      CASE
        WHEN recipientAddress.comment IS NOT NULL AND recipientAddress.comment != ''
        THEN recipientAddress.comment || ' <' || recipientAddress.address || '>'
        ELSE recipientAddress.address
      END,
      ', '
    )
    FROM recipients recipient
    JOIN addresses recipientAddress ON recipientAddress.ROWID = recipient.address
    WHERE recipient.message = m.ROWID
    ORDER BY recipient.position
  ), '') AS recipients,
  COALESCE(NULLIF(m.display_date, 0), NULLIF(m.date_received, 0), NULLIF(m.date_sent, 0), 0) AS msgDate,
  m.size AS msgSize,
  {messageID} AS messageId,
  COALESCE((
    SELECT GROUP_CONCAT(attachmentName.name, char(31))
    FROM attachments attachmentName
    WHERE attachmentName.message = m.ROWID
      AND attachmentName.name IS NOT NULL
      AND attachmentName.name != ''
  ), '') AS attachments
FROM messages m
JOIN mailboxes mb ON mb.ROWID = m.mailbox
LEFT JOIN subjects sub ON sub.ROWID = m.subject
LEFT JOIN addresses senderAddress ON senderAddress.ROWID = m.sender
LEFT JOIN message_global_data globalData ON globalData.message_id = m.message_id
WHERE COALESCE(NULLIF(m.display_date, 0), NULLIF(m.date_received, 0), NULLIF(m.date_sent, 0), 0) > 0{year}{account}
{attachment}{range}
GROUP BY m.ROWID, mb.url
ORDER BY {order}
;
)";

constexpr std::string_view newestFirst =
    "COALESCE(NULLIF(m.display_date, 0), NULLIF(m.date_received, 0), NULLIF(m.date_sent, 0), 0) DESC";

constexpr std::string_view attachmentCondition = R"(  AND EXISTS (
    SELECT 1
    FROM attachments attachmentFilter
    WHERE attachmentFilter.message = m.ROWID
      AND attachmentFilter.name IS NOT NULL
      AND attachmentFilter.name != ''
  ))";

// The year ends at midnight UTC.
std::string yearCondition(std::int64_t maximumYear) {
    using namespace std::chrono;
    const bool hasEnd =
        maximumYear >= static_cast<int>(year::min()) && maximumYear < static_cast<int>(year::max());
    if (!hasEnd) throw MailIndexQueryError(MailIndexQueryError::Kind::queryFailed, "年份筛选无效。");
    const sys_seconds end = sys_days(year(static_cast<int>(maximumYear) + 1) / January / 1);
    return fmt::format("\n          AND COALESCE(NULLIF(m.display_date, 0), NULLIF(m.date_received, 0), "
                       "NULLIF(m.date_sent, 0), 0) < {}",
                       end.time_since_epoch().count());
}

std::string candidateQuery(const CandidateFilter& filter, bool hasMessageIDHeader, const std::string& range,
                           std::string_view order) {
    const std::string account = accountCondition(filter.accountURLPrefixes);
    return fmt::format(
        query,
        fmt::arg("messageID", hasMessageIDHeader ? "COALESCE(globalData.message_id_header, '')" : "''"),
        fmt::arg("year", filter.maximumYear ? yearCondition(*filter.maximumYear) : ""),
        fmt::arg("account", account.empty() ? "" : "\n          " + account),
        fmt::arg("attachment", filter.requireIndexedAttachments ? attachmentCondition : ""),
        fmt::arg("range", range), fmt::arg("order", order));
}

} // namespace

std::string candidateQuery(const CandidateFilter& filter, bool hasMessageIDHeader) {
    return candidateQuery(filter, hasMessageIDHeader, "", newestFirst);
}

// The order is the one in which the rows are grouped already: nothing is sorted, and rows come at once.
std::string candidateQuery(const CandidateFilter& filter, bool hasMessageIDHeader, const RowIDRange& range) {
    return candidateQuery(filter, hasMessageIDHeader,
                          fmt::format("\n  AND m.ROWID >= {} AND m.ROWID <= {}", range.first, range.last),
                          "m.ROWID, mb.url");
}

} // namespace corvane::mailstore
