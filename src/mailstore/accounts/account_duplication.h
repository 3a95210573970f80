// Which accounts look like a redundant copy of another one. Background work; any thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "mailstore/mail_store_context.h"
#include "records/mail_account.h"

namespace corvane::mailstore {

// Warnings for the user by `urlPrefix`, for accounts of whose messages another, not smaller account has at
// least 70 %. An account whose messages can't be read in the time limit is like one without any.
std::map<std::string, std::string> analyzeDuplication(const MailStoreContext& context,
                                                      const std::vector<MailAccount>& accounts,
                                                      const std::string& rootPath);

} // namespace corvane::mailstore
