#include "mailstore/accounts/account_discovery.h"

#include <algorithm>
#include <set>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "mailstore/accounts/account_identity.h"
#include "mailstore/accounts/account_queries.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/reader_logs.h"
#include "platform/files/directory.h"
#include "text/case.h"

namespace corvane::mailstore {

namespace {

std::string listed(const std::vector<std::string>& values) {
    return fmt::format("[{}]", fmt::join(values, ", "));
}

std::vector<std::string> accountFolderUUIDs(const std::string& rootPath) {
    std::vector<std::string> uuids;
    const std::string folder = latestMailVersionDirectory(rootPath);
    std::string reason;
    const auto entries = platform::listDirectory(folder, platform::HiddenEntries::skip, &reason);
    if (!entries) {
        accountsLog(fmt::format("枚举 Mail 目录失败: {} | path={}", reason, folder));
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
    accountsLog(fmt::format("Envelope Index: {} exists={} readable={}", index, platform::fileExists(index),
                            isReadable));
    const auto folders = accountFolderUUIDs(rootPath);
    const auto indexed =
        isReadable ? accountUUIDsFromEnvelopeIndex(context, index) : std::vector<std::string>();
    std::set<std::string> merged(folders.begin(), folders.end());
    merged.insert(indexed.begin(), indexed.end());
    std::vector<std::string> uuids(merged.begin(), merged.end());
    accountsLog("Mail 根目录: " + rootPath);
    accountsLog("文件系统 UUID 文件夹: " + listed(folders));
    accountsLog("索引 UUID: " + listed(indexed));
    accountsLog("合并 UUID: " + listed(uuids));
    return uuids;
}

std::vector<std::string> uuidsWithMail(const MailStoreContext& context, const std::vector<std::string>& uuids,
                                       const std::string& index) {
    const auto counts = queryMessageCountPerUUID(context, uuids, index);
    std::vector<std::string> valid;
    for (const auto& [uuid, count] : counts) {
        if (count > 0) valid.push_back(uuid);
    }
    accountsLog(fmt::format("各UUID邮件数: {}", counts));
    accountsLog("有效账户UUID: " + listed(valid));
    return valid;
}

} // namespace

std::vector<MailAccount> queryAccounts(const MailStoreContext& context, const std::string& rootPath) {
    const std::string index = envelopeIndexPath(rootPath);
    const auto uuids = uuidsWithMail(context, knownUUIDs(context, rootPath), index);
    auto accounts = namedAccounts(queryIdentities(context, uuids, index));
    accountsLog(fmt::format("最终 {} 个账户", accounts.size()));
    return sortAccounts(std::move(accounts));
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
