#include "mailstore/accounts/account_identity.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "mailstore/accounts/accounts_database.h"
#include "mailstore/reader_logs.h"
#include "platform/threads/parallel.h"
#include "text/case.h"
#include "text/graphemes.h"

namespace corvane::mailstore {

namespace {

using EmailsByUUID = std::map<std::string, std::string>;

constexpr std::string_view localScheme = "local";

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

AccountIdentities queryIdentities(const MailStoreContext& context, const std::vector<std::string>& uuids,
                                  const std::string& envelopeIndexPath) {
    AccountIdentities identities{
        .schemes = querySchemes(context, uuids, envelopeIndexPath), .emails = {}, .topRecipients = {}};
    platform::parallelCalls([&] { identities.emails = emailsOf(context, uuids, envelopeIndexPath); },
                            [&] {
                                for (const auto& [uuid, scheme] : identities.schemes) {
                                    if (scheme != localScheme) continue;
                                    identities.topRecipients.emplace(
                                        uuid, queryTopRecipient(context, uuid, envelopeIndexPath));
                                }
                            });
    return identities;
}

std::vector<MailAccount> namedAccounts(const AccountIdentities& identities) {
    // Local archives belong to real accounts only, not to each other.
    std::set<std::string> realAddresses;
    for (const auto& [uuid, email] : identities.emails) {
        if (identities.schemes.at(uuid) != localScheme) realAddresses.insert(email);
    }
    std::vector<MailAccount> accounts;
    for (const auto& [uuid, scheme] : identities.schemes) {
        if (scheme != localScheme) {
            accounts.push_back(serverAccount(uuid, scheme, identities.emails));
            continue;
        }
        const auto& topRecipient = identities.topRecipients.at(uuid);
        accountsLog(
            fmt::format("本地 store {}… 最高频收件人: {}", uuid.substr(0, 8), topRecipient.value_or("")));
        accounts.push_back(localStore(uuid, scheme, topRecipient, realAddresses));
    }
    return accounts;
}

std::string displayDomain(std::string_view address) {
    const std::size_t at = address.find('@');
    if (at != std::string_view::npos) address.remove_prefix(at + 1);
    std::string name(address.substr(0, address.find('.')));
    const std::size_t initial = text::graphemePrefix(name, 1).size();
    return text::uppercased(name.substr(0, initial)) + name.substr(initial);
}

} // namespace corvane::mailstore
