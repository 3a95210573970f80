#include "mailstore/accounts/accounts_in_mail.h"

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "mailstore/accounts/account_queries.h"
#include "mailstore/accounts/accounts_database.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/sqlite/shell_queries.h"
#include "platform/files/file_look.h"
#include "text/case.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

using Presence = platform::FileLook::Presence;

struct SystemName {
    std::int64_t parent = 0;
    std::string description;
    std::string address;
};

struct SystemNames {
    std::unordered_map<std::int64_t, SystemName> byKey;
    std::map<std::string, std::int64_t, std::less<>> keyOf; // by identifier in upper case
};

std::string trimmedText(JsonRow& row, std::string_view column) {
    return std::string(text::trimWhitespaceAndNewlines(row.text(column).value_or("")));
}

void addName(SystemNames& names, JsonRow& row) {
    const auto key = row.integer("k");
    if (!key) return;
    SystemName name{
        .parent = row.integer("p").value_or(0), .description = trimmedText(row, "d"), .address = {}};
    std::string user = trimmedText(row, "u");
    if (user.contains('@')) name.address = std::move(user);
    names.keyOf.emplace(text::uppercased(trimmedText(row, "i")), *key);
    names.byKey.emplace(*key, std::move(name));
}

// Whether it is a database without accounts, and not one that can't be read.
bool hasNoAccounts(const MailStoreContext& context, const std::string& database) {
    bool hasTable = false;
    const bool isKnown =
        runJSONRows(context, "SELECT COUNT(*) AS held FROM sqlite_master WHERE name = 'ZACCOUNT';", database,
                    [&](JsonRow& row) { hasTable = row.integer("held").value_or(1) > 0; });
    return isKnown && !hasTable;
}

// Nullopt when nobody could look.
std::optional<SystemNames> readNames(const MailStoreContext& context, const std::string& database) {
    SystemNames names;
    const bool isWhole =
        runJSONRows(context,
                    "SELECT Z_PK AS k, COALESCE(ZPARENTACCOUNT, 0) AS p, ZIDENTIFIER AS i, ZUSERNAME AS u, "
                    "ZACCOUNTDESCRIPTION AS d FROM ZACCOUNT;",
                    database, [&](JsonRow& row) { addName(names, row); });
    if (isWhole) return names;
    return hasNoAccounts(context, database) ? std::optional(SystemNames()) : std::nullopt;
}

std::optional<SystemNames> systemNames(const MailStoreContext& context) {
    for (const std::string& database : systemAccountsDatabases(context)) {
        const Presence presence = platform::lookAtFile(database).presence;
        if (presence == Presence::unknown) return std::nullopt;
        if (presence == Presence::absent) continue;
        auto names = readNames(context, database);
        if (!names || !names->byKey.empty()) return names;
    }
    return SystemNames();
}

// What an account of its own doesn't have, that which it belongs to has.
AccountInMail namedAccount(const std::string& uuid, const SystemNames& names) {
    AccountInMail account{.urlPrefix = "imap://" + uuid, .shownName = {}, .address = {}};
    const auto key = names.keyOf.find(uuid);
    auto own = key == names.keyOf.end() ? names.byKey.end() : names.byKey.find(key->second);
    for (int step = 0; step < 2 && own != names.byKey.end(); ++step) {
        if (account.shownName.empty()) account.shownName = own->second.description;
        if (account.address.empty()) account.address = own->second.address;
        own = names.byKey.find(own->second.parent);
    }
    if (account.shownName.empty()) account.shownName = account.address;
    return account;
}

} // namespace

std::optional<AccountsInMail> queryAccountsInMail(const MailStoreContext& context,
                                                  const std::string& rootPath) {
    if (!canQueryEnvelopeIndex(context, rootPath)) return AccountsInMail();
    std::set<std::string> uuids;
    const bool isWhole = runJSONRows(
        context, "SELECT url FROM mailboxes WHERE ROWID IN (SELECT DISTINCT mailbox FROM messages);",
        envelopeIndexPath(rootPath), [&](JsonRow& row) {
            const auto found = extractUUIDs(row.text("url").value_or(""));
            if (!found.empty()) uuids.insert(found.front());
        });
    if (!isWhole) return std::nullopt;
    const auto names = systemNames(context);
    AccountsInMail found{.accounts = {}, .areNamesKnown = names.has_value()};
    const SystemNames known = names.value_or(SystemNames());
    for (const std::string& uuid : uuids) found.accounts.push_back(namedAccount(uuid, known));
    return found;
}

} // namespace corvane::mailstore
