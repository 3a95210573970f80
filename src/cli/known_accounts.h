// Accounts that a command was given, against those that there are.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "cli/session.h"

namespace corvane::cli {

// What a person is told of a name that isn't known, with the known ones.
std::string unknownNameText(std::string_view what, const std::string& asked,
                            const std::set<std::string>& known);

// The keys of the accounts that Mail has or that a message of the last scan is of.
std::set<std::string> accountsOfMail(Session& session);

// An empty list would look as if the account had no mail: throws CommandFailure for an account that isn't
// among the known ones. For a script, whose answer stays the same, that is a warning. Where nothing is known,
// every account passes.
void requireAccounts(const std::vector<std::string>& asked, const std::set<std::string>& known, bool json);

} // namespace corvane::cli
