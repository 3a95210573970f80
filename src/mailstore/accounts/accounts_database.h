// The addresses of accounts by what the system, not Mail, knows of them. Background work; any thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "mailstore/mail_store_context.h"

namespace corvane::mailstore {

// Where the system may keep its accounts, in the order to ask: the first database with accounts counts.
std::vector<std::string> systemAccountsDatabases(const MailStoreContext& context);

// Addresses by UUID from the system's accounts database, else from property lists of the mailboxes. An
// account that neither knows, or whose source can't be read, is left out.
std::map<std::string, std::string> queryEmailsFromAccountsDB(const MailStoreContext& context,
                                                             const std::vector<std::string>& uuids);

} // namespace corvane::mailstore
