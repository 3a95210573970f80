#include "mailstore/accounts/accounts_database.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "mailstore/property_list.h"
#include "mailstore/reader_logs.h"
#include "mailstore/sqlite/shell_queries.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "text/case.h"
#include "text/regex.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

constexpr const char* accountsQuery =
    R"(SELECT Z_PK, COALESCE(ZIDENTIFIER,''), COALESCE(ZUSERNAME,''),
       COALESCE(ZACCOUNTDESCRIPTION,''), COALESCE(ZPARENTACCOUNT,0)
FROM ZACCOUNT WHERE ZIDENTIFIER IS NOT NULL;)";

void logDatabase(std::string_view text) {
    accountsLog(fmt::format("AccountsDB {}", text));
}

std::optional<std::string> addressIn(std::string_view text) {
    static const text::Regex pattern("[A-Za-z0-9._%+\\-]+@[A-Za-z0-9.\\-]+\\.[A-Za-z]{2,}");
    const auto match = pattern.firstMatch(text);
    if (!match) return std::nullopt;
    return std::string(match->group(0, text));
}

// A user name of other letters than ASCII, which the pattern would take a piece of.
std::optional<std::string> addressOfUser(std::string_view user) {
    static const text::Regex pattern("[^\\s@<>()\\[\\],;:\"]+@[^\\s@<>()\\[\\],;:\"]+");
    const std::string_view name = text::trimWhitespaceAndNewlines(user);
    const bool isOther = std::ranges::any_of(name, [](char byte) { return (byte & 0x80) != 0; });
    const auto match = isOther ? pattern.firstMatch(name) : std::nullopt;
    if (match && match->group(0, name) == name) return std::string(name);
    return addressIn(user);
}

struct SystemAccount {
    std::string key;
    std::string parentKey;
    std::optional<std::string> address;
};

struct SystemAccounts {
    std::unordered_map<std::string, SystemAccount> byIdentifier; // upper case
    std::unordered_map<std::string, std::optional<std::string>> addressByKey;
};

SystemAccounts parseAccounts(std::string_view output) {
    SystemAccounts accounts;
    for (const std::string_view line : text::splitNonEmpty(output, '\n')) {
        const auto columns = text::splitText(line, '|');
        if (columns.size() < 5) continue;
        SystemAccount account{.key = std::string(columns[0]),
                              .parentKey = std::string(columns.back()),
                              .address = addressOfUser(columns[2])};
        if (!account.address) account.address = addressIn(columns[3]);
        accounts.addressByKey.emplace(account.key, account.address);
        accounts.byIdentifier.emplace(text::asciiUppercased(columns[1]), std::move(account));
    }
    return accounts;
}

SystemAccounts readAccounts(const MailStoreContext& context) {
    for (const std::string& path : systemAccountsDatabases(context)) {
        if (!platform::fileExists(path)) continue;
        const auto output = runLongQuery(context, accountsQuery, path);
        logDatabase(fmt::format("{}: {}", path, output ? "已读取" : "读取失败"));
        if (output && !output->empty()) return parseAccounts(*output);
    }
    return {};
}

std::optional<std::string> addressOf(const SystemAccounts& accounts, const std::string& uuid) {
    const auto own = accounts.byIdentifier.find(uuid);
    if (own == accounts.byIdentifier.end()) return std::nullopt;
    if (own->second.address) return own->second.address;
    const auto parent = accounts.addressByKey.find(own->second.parentKey);
    return parent == accounts.addressByKey.end() ? std::nullopt : parent->second;
}

// The version folder is fixed here, whatever the newest one is.
std::optional<std::string> addressFromMailboxes(const std::string& home, const std::string& uuid) {
    const std::string folder = platform::joinPath(home, "Library/Mail/V10/" + uuid);
    const auto entries = platform::listDirectory(folder, platform::HiddenEntries::skip);
    if (!entries) return std::nullopt;
    for (const auto& [name, kind] : *entries) {
        if (kind != platform::EntryKind::directory || !name.ends_with(".mbox")) continue;
        const PropertyList list = readPropertyList(platform::joinPath(folder, name + "/Info.plist"));
        for (const char* key : {"AccountEmailAddress", "EmailAddress"}) {
            const auto value = list.find(std::string_view(key));
            const auto* text = value == list.end() ? nullptr : std::get_if<std::string>(&value->second);
            const auto address = text == nullptr ? std::nullopt : addressIn(*text);
            if (!address) continue;
            logDatabase(fmt::format("{} → {} (mbox plist)", uuid, *address));
            return address;
        }
    }
    return std::nullopt;
}

} // namespace

std::vector<std::string> systemAccountsDatabases(const MailStoreContext& context) {
    const std::string folder =
        platform::joinPath(context.platform.realUserHomeDirectory(), "Library/Accounts");
    return {platform::joinPath(folder, "Accounts4.sqlite"), platform::joinPath(folder, "Accounts3.sqlite")};
}

std::map<std::string, std::string> queryEmailsFromAccountsDB(const MailStoreContext& context,
                                                             const std::vector<std::string>& uuids) {
    std::map<std::string, std::string> emails;
    const std::string home = context.platform.realUserHomeDirectory();
    const SystemAccounts accounts = readAccounts(context);
    logDatabase(fmt::format("账户行数: {}", accounts.byIdentifier.size()));
    for (const std::string& uuid : uuids) {
        auto address = addressOf(accounts, uuid);
        if (!address) address = addressFromMailboxes(home, uuid);
        if (address) emails.emplace(uuid, *address);
    }
    accountsLog(fmt::format("最终邮箱映射: {}", emails));
    return emails;
}

} // namespace corvane::mailstore
