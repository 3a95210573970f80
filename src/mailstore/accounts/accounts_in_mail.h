// Which accounts Mail has mail of now, and what its own menus call them: the description that the user sees
// and may change at any time in the system's settings, which need not be the account's address. Background
// work, a few short queries; any thread.
#pragma once

#include <optional>
#include <string>

#include "mailstore/mail_store_context.h"
#include "records/account_in_mail.h"

namespace corvane::mailstore {

// Nullopt when the index couldn't be asked; none without an index.
std::optional<AccountsInMail> queryAccountsInMail(const MailStoreContext& context,
                                                  const std::string& rootPath);

} // namespace corvane::mailstore
