#include "mailstore/accounts/account_queries.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/reader_logs.h"
#include "mailstore/sqlite/shell_queries.h"
#include "platform/threads/parallel.h"
#include "text/case.h"
#include "text/charsets/encoding.h"
#include "text/regex.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

// The first line that isn't empty, trimmed; nullopt without one, and after a failure. Throws as
// runRawMultilineQuery.
std::optional<std::string> firstLine(const MailStoreContext& context, const std::string& sql,
                                     const std::string& index) {
    const auto lines = runRawMultilineQuery(context, sql, index);
    if (!lines) return std::nullopt;
    const auto found = std::ranges::find_if(*lines, [](const std::string& line) { return !line.empty(); });
    if (found == lines->end()) return std::nullopt;
    return std::string(text::trimWhitespaceAndNewlines(*found));
}

// Lower-case scheme of one of the account's mailbox urls; empty when there is none.
std::string sampleScheme(const MailStoreContext& context, const std::string& uuid, const std::string& index) {
    const auto url = firstLine(
        context, fmt::format("SELECT url FROM mailboxes WHERE url LIKE '%{}%' AND url != '' LIMIT 1;", uuid),
        index);
    const std::size_t end = url ? url->find("://") : std::string::npos;
    return end == std::string::npos ? "" : text::lowercased(url->substr(0, end));
}

// `condition` is about the mailbox urls.
std::string topRecipientQuery(const std::string& uuid, std::string_view condition) {
    return fmt::format(R"(SELECT ra.address, count(*) as cnt
FROM messages m
JOIN mailboxes mb ON mb.ROWID = m.mailbox
JOIN recipients r ON r.message = m.ROWID AND r.type = 0
JOIN addresses ra ON ra.ROWID = r.address
WHERE mb.url LIKE '%{}%' AND ra.address LIKE '%@%'{}
GROUP BY ra.address ORDER BY cnt DESC LIMIT 1;)",
                       uuid, condition);
}

std::string topSenderOfSentQuery(const std::string& uuid) {
    return fmt::format(R"(SELECT a.address, count(*) as cnt
FROM messages m
JOIN mailboxes mb ON mb.ROWID = m.mailbox
JOIN addresses a  ON a.ROWID  = m.sender
WHERE mb.url LIKE '%{}%'
  AND a.address LIKE '%@%'
  AND LOWER(mb.url) LIKE '%sent%'
GROUP BY a.address ORDER BY cnt DESC LIMIT 1;)",
                       uuid);
}

std::optional<std::string> inferredEmail(const MailStoreContext& context, const std::string& uuid,
                                         const std::string& index) {
    auto email = runRawQuery(context, topSenderOfSentQuery(uuid), index);
    if (!email)
        email = runRawQuery(context, topRecipientQuery(uuid, "\n  AND LOWER(mb.url) LIKE '%inbox%'"), index);
    return email;
}

} // namespace

std::vector<std::string> extractUUIDs(std::string_view text) {
    static const text::Regex pattern(
        "[0-9A-Fa-f]{8}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{12}");
    std::vector<std::string> uuids;
    for (const auto& match : pattern.allMatches(text))
        uuids.push_back(text::asciiUppercased(match.group(0, text)));
    return uuids;
}

std::vector<std::string> accountUUIDsFromEnvelopeIndex(const MailStoreContext& context,
                                                       const std::string& envelopeIndexPath) {
    const auto lines = runRawMultilineQuery(
        context, "SELECT DISTINCT url FROM mailboxes WHERE url LIKE '%-%-%-%-%';", envelopeIndexPath);
    if (!lines) return {};
    std::set<std::string> uuids;
    std::size_t lineCount = 0;
    for (const std::string& line : *lines) {
        if (line.empty()) continue;
        ++lineCount;
        const auto found = extractUUIDs(line);
        uuids.insert(found.begin(), found.end());
    }
    accountsLog(fmt::format("索引 URL 行数: {}", lineCount));
    return {uuids.begin(), uuids.end()};
}

std::map<std::string, std::int64_t> queryMessageCountPerUUID(const MailStoreContext& context,
                                                             const std::vector<std::string>& uuids,
                                                             const std::string& envelopeIndexPath) {
    std::map<std::string, std::int64_t> counts;
    if (uuids.empty()) return counts;
    // One pass over the messages for all accounts.
    const auto answer = firstLine(
        context,
        fmt::format("WITH counts AS (SELECT mailbox, count(*) AS n FROM messages GROUP BY mailbox),\n"
                    "  uuids(uuid) AS (VALUES ('{}'))\n"
                    "SELECT COALESCE(group_concat(uuid || '=' || total), 'none') FROM (\n"
                    "  SELECT uuid, SUM(n) AS total FROM uuids\n"
                    "  JOIN mailboxes mb ON mb.url LIKE '%' || uuid || '%'\n"
                    "  JOIN counts ON counts.mailbox = mb.ROWID GROUP BY uuid);",
                    fmt::join(uuids, "'), ('")),
        envelopeIndexPath);
    if (!answer) return counts;
    for (const std::string& uuid : uuids) counts[uuid] = 0;
    for (const std::string_view entry : text::splitNonEmpty(*answer, ',')) {
        const std::size_t end = entry.find('=');
        const auto count =
            end == std::string_view::npos ? std::nullopt : text::parseInteger(entry.substr(end + 1));
        if (count) counts[std::string(entry.substr(0, end))] = *count;
    }
    return counts;
}

SchemesByUUID querySchemes(const MailStoreContext& context, const std::vector<std::string>& uuids,
                           const std::string& envelopeIndexPath) {
    std::vector<std::string> schemes(uuids.size());
    platform::parallelFor(0, uuids.size(), [&](std::size_t i) {
        schemes[i] = sampleScheme(context, uuids[i], envelopeIndexPath);
    });
    SchemesByUUID byUUID;
    for (std::size_t i = 0; i < uuids.size(); ++i) byUUID.emplace(uuids[i], schemes[i]);
    return byUUID;
}

std::optional<std::string> queryTopRecipient(const MailStoreContext& context, const std::string& uuid,
                                             const std::string& envelopeIndexPath) {
    return runRawQuery(context, topRecipientQuery(uuid, ""), envelopeIndexPath);
}

std::map<std::string, std::string> queryEmailsFromSentMessages(const MailStoreContext& context,
                                                               const std::vector<std::string>& uuids,
                                                               const std::string& envelopeIndexPath) {
    std::map<std::string, std::string> emails;
    std::vector<std::optional<std::string>> found(uuids.size());
    platform::parallelFor(0, uuids.size(), [&](std::size_t i) {
        found[i] = inferredEmail(context, uuids[i], envelopeIndexPath);
    });
    for (std::size_t i = 0; i < uuids.size(); ++i) {
        if (found[i] && !found[i]->empty()) emails.emplace(uuids[i], *found[i]);
    }
    accountsLog(fmt::format("发件/收件推断邮箱: {}", emails));
    return emails;
}

std::map<std::string, std::vector<FolderInfo>> queryFoldersByAccount(const MailStoreContext& context,
                                                                     const std::string& rootPath) {
    std::map<std::string, std::vector<FolderInfo>> folders;
    const auto lines =
        runRawMultilineQuery(context,
                             "SELECT mb.url, count(*) FROM messages m JOIN mailboxes mb ON mb.ROWID = "
                             "m.mailbox GROUP BY mb.url;",
                             envelopeIndexPath(rootPath));
    if (!lines) return folders;
    for (const std::string& line : *lines) {
        // The count is the last column, whatever the url holds.
        const std::size_t separator = line.rfind('|');
        if (separator == std::string::npos) continue;
        const std::string_view url = std::string_view(line).substr(0, separator);
        const auto uuids = extractUUIDs(url);
        const auto count = text::parseInteger(std::string_view(line).substr(separator + 1));
        if (!uuids.empty() && count)
            folders[uuids.front()].push_back({.name = mailboxName(url), .count = *count});
    }
    for (auto& [uuid, list] : folders) std::ranges::stable_sort(list, std::greater(), &FolderInfo::count);
    return folders;
}

} // namespace corvane::mailstore
