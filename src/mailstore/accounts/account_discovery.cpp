#include "mailstore/accounts/account_discovery.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/index/sqlite_shell.h"
#include "platform/directory.h"
#include "platform/parallel.h"
#include "records/logs/console_log.h"
#include "text/case.h"
#include "text/encoding.h"
#include "text/graphemes.h"
#include "text/regex.h"
#include "text/split.h"

namespace corvane::mailstore {

namespace {

using EmailsByUUID = std::map<std::string, std::string>;

void logAccounts(std::string_view text) {
    consoleLine(fmt::format("[Accounts] {}", text));
}

std::string listed(const std::vector<std::string>& values) {
    return fmt::format("[{}]", fmt::join(values, ", "));
}

std::vector<std::string> accountFolderUUIDs(const std::string& rootPath) {
    std::vector<std::string> uuids;
    const std::string folder = latestMailVersionDirectory(rootPath);
    std::string reason;
    const auto entries = platform::listDirectory(folder, platform::HiddenEntries::skip, &reason);
    if (!entries) {
        logAccounts(fmt::format("枚举 Mail 目录失败: {} | path={}", reason, folder));
        return uuids;
    }
    for (const auto& [name, kind] : *entries) {
        if (kind != platform::EntryKind::directory || text::asciiUppercased(name) == "MAILDATA") continue;
        const auto found = extractUUIDs(name);
        if (!found.empty()) uuids.push_back(found.front());
    }
    std::ranges::sort(uuids);
    return uuids;
}

std::vector<std::string> knownUUIDs(const MailStoreContext& context, const std::string& rootPath) {
    const std::string index = envelopeIndexPath(rootPath);
    const bool isReadable = canQueryEnvelopeIndex(context, rootPath);
    logAccounts(fmt::format("Envelope Index: {} exists={} readable={}", index, platform::fileExists(index),
                            isReadable));
    const auto folders = accountFolderUUIDs(rootPath);
    const auto indexed =
        isReadable ? accountUUIDsFromEnvelopeIndex(context, index) : std::vector<std::string>();
    std::set<std::string> merged(folders.begin(), folders.end());
    merged.insert(indexed.begin(), indexed.end());
    std::vector<std::string> uuids(merged.begin(), merged.end());
    logAccounts("Mail 根目录: " + rootPath);
    logAccounts("文件系统 UUID 文件夹: " + listed(folders));
    logAccounts("索引 UUID: " + listed(indexed));
    logAccounts("合并 UUID: " + listed(uuids));
    return uuids;
}

std::vector<std::string> uuidsWithMail(const MailStoreContext& context, const std::vector<std::string>& uuids,
                                       const std::string& index) {
    const auto counts = queryMessageCountPerUUID(context, uuids, index);
    std::vector<std::string> valid;
    for (const auto& [uuid, count] : counts) {
        if (count > 0) valid.push_back(uuid);
    }
    logAccounts(fmt::format("各UUID邮件数: {}", counts));
    logAccounts("有效账户UUID: " + listed(valid));
    return valid;
}

// Lower-case scheme of one of the account's mailbox urls; empty when there is none.
std::string sampleScheme(const MailStoreContext& context, const std::string& uuid, const std::string& index) {
    const auto url = runRawQuery(
        context, fmt::format("SELECT url FROM mailboxes WHERE url LIKE '%{}%' AND url != '' LIMIT 1;", uuid),
        index);
    const std::size_t end = url ? url->find("://") : std::string::npos;
    return end == std::string::npos ? "" : text::lowercased(url->substr(0, end));
}

EmailsByUUID schemesOf(const MailStoreContext& context, const std::vector<std::string>& uuids,
                       const std::string& index) {
    std::vector<std::string> schemes(uuids.size());
    platform::parallelFor(0, uuids.size(),
                          [&](std::size_t i) { schemes[i] = sampleScheme(context, uuids[i], index); });
    EmailsByUUID byUUID;
    for (std::size_t i = 0; i < uuids.size(); ++i) byUUID.emplace(uuids[i], schemes[i]);
    return byUUID;
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

using TopRecipients = std::map<std::string, std::optional<std::string>>;

TopRecipients topRecipientsOfLocalStores(const MailStoreContext& context, const EmailsByUUID& schemes,
                                         const std::string& index) {
    TopRecipients recipients;
    for (const auto& [uuid, scheme] : schemes) {
        if (scheme == "local")
            recipients.emplace(uuid, runRawQuery(context, topRecipientQuery(uuid, ""), index));
    }
    return recipients;
}

EmailsByUUID emailsOf(const MailStoreContext& context, const std::vector<std::string>& uuids,
                      const std::string& index) {
    EmailsByUUID emails = queryEmailsFromAccountsDB(context, uuids);
    std::vector<std::string> unknown;
    std::ranges::copy_if(uuids, std::back_inserter(unknown),
                         [&](const std::string& uuid) { return !emails.contains(uuid); });
    emails.merge(queryEmailsFromSentMessages(context, unknown, index));
    return emails;
}

MailAccount serverAccount(const std::string& uuid, const std::string& scheme, const EmailsByUUID& emails) {
    const auto email = emails.find(uuid);
    return {.urlPrefix = "imap://" + uuid,
            .emailAddress =
                email != emails.end() ? email->second : fmt::format("账户 {}…", uuid.substr(0, 8)),
            .duplicationNote = {},
            .folders = {},
            .isLocalStore = false,
            .scheme = scheme,
            .linkedAccountEmail = {}};
}

MailAccount localStore(const std::string& uuid, const std::string& scheme,
                       const std::optional<std::string>& topRecipient,
                       const std::set<std::string>& realAddresses) {
    MailAccount account{.urlPrefix = "imap://" + uuid,
                        .emailAddress = "本地邮箱（我的 Mac 上）",
                        .duplicationNote = {},
                        .folders = {},
                        .isLocalStore = true,
                        .scheme = scheme,
                        .linkedAccountEmail = {}};
    if (topRecipient && realAddresses.contains(*topRecipient)) {
        account.linkedAccountEmail = topRecipient;
        account.emailAddress = displayDomain(*topRecipient) + " · 本地归档";
    }
    return account;
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
        uuids.merge([&] {
            const auto found = extractUUIDs(line);
            return std::set<std::string>(found.begin(), found.end());
        }());
    }
    logAccounts(fmt::format("索引 URL 行数: {}", lineCount));
    return {uuids.begin(), uuids.end()};
}

std::map<std::string, std::int64_t> queryMessageCountPerUUID(const MailStoreContext& context,
                                                             const std::vector<std::string>& uuids,
                                                             const std::string& envelopeIndexPath) {
    std::map<std::string, std::int64_t> counts;
    if (uuids.empty()) return counts;
    // One pass over the messages for all accounts.
    const auto answer = runRawQuery(
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
    for (const std::string_view told : text::splitNonEmpty(*answer, ',')) {
        const std::size_t end = told.find('=');
        const auto count =
            end == std::string_view::npos ? std::nullopt : text::parseInteger(told.substr(end + 1));
        if (count) counts[std::string(told.substr(0, end))] = *count;
    }
    return counts;
}

std::map<std::string, std::string> queryEmailsFromSentMessages(const MailStoreContext& context,
                                                               const std::vector<std::string>& uuids,
                                                               const std::string& envelopeIndexPath) {
    EmailsByUUID emails;
    std::vector<std::optional<std::string>> found(uuids.size());
    platform::parallelFor(0, uuids.size(), [&](std::size_t i) {
        found[i] = inferredEmail(context, uuids[i], envelopeIndexPath);
    });
    for (std::size_t i = 0; i < uuids.size(); ++i) {
        if (found[i] && !found[i]->empty()) emails.emplace(uuids[i], *found[i]);
    }
    logAccounts(fmt::format("发件/收件推断邮箱: {}", emails));
    return emails;
}

std::string displayDomain(std::string_view address) {
    const std::size_t at = address.find('@');
    if (at != std::string_view::npos) address.remove_prefix(at + 1);
    std::string name(address.substr(0, address.find('.')));
    const std::size_t initial = text::graphemePrefix(name, 1).size();
    return text::uppercased(name.substr(0, initial)) + name.substr(initial);
}

std::vector<MailAccount> queryAccounts(const MailStoreContext& context, const std::string& rootPath) {
    const std::string index = envelopeIndexPath(rootPath);
    const auto uuids = uuidsWithMail(context, knownUUIDs(context, rootPath), index);
    const EmailsByUUID schemes = schemesOf(context, uuids, index);
    EmailsByUUID emails;
    TopRecipients topRecipients;
    platform::parallelCalls([&] { emails = emailsOf(context, uuids, index); },
                            [&] { topRecipients = topRecipientsOfLocalStores(context, schemes, index); });
    // Local archives belong to real accounts only, not to each other.
    std::set<std::string> realAddresses;
    for (const auto& [uuid, email] : emails) {
        if (schemes.at(uuid) != "local") realAddresses.insert(email);
    }
    std::vector<MailAccount> accounts;
    for (const auto& [uuid, scheme] : schemes) {
        if (scheme != "local") {
            accounts.push_back(serverAccount(uuid, scheme, emails));
            continue;
        }
        const auto& topRecipient = topRecipients.at(uuid);
        logAccounts(
            fmt::format("本地 store {}… 最高频收件人: {}", uuid.substr(0, 8), topRecipient.value_or("")));
        accounts.push_back(localStore(uuid, scheme, topRecipient, realAddresses));
    }
    logAccounts(fmt::format("最终 {} 个账户", accounts.size()));
    return sortAccounts(std::move(accounts));
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

std::map<std::string, std::string> analyzeDuplication(const MailStoreContext& context,
                                                      const std::vector<MailAccount>& accounts,
                                                      const std::string& rootPath) {
    std::map<std::string, std::string> notes;
    if (accounts.size() < 2) return notes;
    const std::string index = envelopeIndexPath(rootPath);
    std::vector<std::vector<std::int64_t>> messages; // ascending, by account
    messages.reserve(accounts.size());
    for (const MailAccount& account : accounts) {
        messages.push_back(runIntSetQuery(
            context,
            fmt::format("SELECT DISTINCT m.message_id FROM messages m\n"
                        "JOIN mailboxes mb ON mb.ROWID = m.mailbox\n"
                        "WHERE mb.url LIKE '%{}%' AND m.message_id IS NOT NULL AND m.message_id != 0;",
                        quotedText(withoutImapScheme(account.urlPrefix))),
            index));
    }
    for (std::size_t a = 0; a < accounts.size(); ++a) {
        double highest = 0;
        for (std::size_t b = 0; b < accounts.size(); ++b) {
            if (a == b || messages[a].empty() || messages[b].size() < messages[a].size()) continue;
            std::vector<std::int64_t> shared;
            std::ranges::set_intersection(messages[a], messages[b], std::back_inserter(shared));
            const double overlap =
                static_cast<double>(shared.size()) / static_cast<double>(messages[a].size());
            logAccounts(fmt::format("重复检测: {} ⊂ {} {:.3f}", accounts[a].distinguishedLabel(),
                                    accounts[b].distinguishedLabel(), overlap));
            if (overlap < 0.7 || overlap <= highest) continue;
            highest = overlap;
            notes[accounts[a].urlPrefix] = fmt::format("与「{}」高度重复（{:.0f}%），很可能是冗余副本",
                                                       accounts[b].distinguishedLabel(), overlap * 100);
        }
    }
    return notes;
}

std::vector<MailAccount> sortAccounts(std::vector<MailAccount> accounts) {
    std::ranges::stable_sort(accounts, {}, &MailAccount::emailAddress);
    const auto locals = std::ranges::stable_partition(
        accounts, [](const MailAccount& account) { return !account.isLocalStore; });
    std::vector<MailAccount> unplaced(locals.begin(), locals.end());
    accounts.erase(locals.begin(), locals.end());
    std::vector<MailAccount> sorted;
    for (MailAccount& account : accounts) {
        sorted.push_back(std::move(account));
        const std::string address = sorted.back().emailAddress;
        for (const MailAccount& local : unplaced) {
            if (local.linkedAccountEmail == address) sorted.push_back(local);
        }
        std::erase_if(unplaced,
                      [&](const MailAccount& local) { return local.linkedAccountEmail == address; });
    }
    sorted.insert(sorted.end(), unplaced.begin(), unplaced.end());
    return sorted;
}

} // namespace corvane::mailstore
