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

// An empty list would look as if the account had no mail: throws CommandFailure for an account that neither
// Mail has nor a message of the last scan is of. For a script, whose answer stays the same, that is a
// warning. Where no account is known, every one passes.
void requireAccounts(Session& session, const std::vector<std::string>& asked, bool json);

} // namespace corvane::cli
