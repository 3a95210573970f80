// What an account of the store is called: its address from the best source that knows it, or, for a local
// archive, the account whose mail it holds. Background work; any thread.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mailstore/accounts/account_queries.h"
#include "mailstore/mail_store_context.h"
#include "records/mail_account.h"

namespace corvane::mailstore {

// What is known of the accounts before they are named, by UUID.
struct AccountIdentities {
    SchemesByUUID schemes; // one for each account
    std::map<std::string, std::string> emails;
    std::map<std::string, std::optional<std::string>> topRecipients; // of local archives only
};

// Reads all of it for the accounts named. A source that fails contributes nothing.
AccountIdentities queryIdentities(const MailStoreContext& context, const std::vector<std::string>& uuids,
                                  const std::string& envelopeIndexPath);

// The accounts, ascending by UUID. A local archive is linked to the account of another scheme whose address
// most of its mail was sent to. Pure but for the log.
std::vector<MailAccount> namedAccounts(const AccountIdentities& identities);

// The name of an address's domain: "me@host.org" gives "Host". Pure.
std::string displayDomain(std::string_view address);

} // namespace corvane::mailstore
