// Which accounts the store has: those whose UUID names a folder or stands in the index, and that hold mail.
// A source that fails contributes nothing. Every step is a process of its own: background work; any thread.
#pragma once

#include <string>
#include <vector>

#include "mailstore/mail_store_context.h"
#include "records/mail_account.h"

namespace corvane::mailstore {

// The accounts with mail, as `sortAccounts` orders them. Empty without a usable index. Throws
// MailIndexQueryError (timedOut) when the index couldn't be looked at in time.
std::vector<MailAccount> queryAccounts(const MailStoreContext& context, const std::string& rootPath);

// Accounts by address, each followed by its local archives; local archives of no account at the end. Pure.
std::vector<MailAccount> sortAccounts(std::vector<MailAccount> accounts);

} // namespace corvane::mailstore
