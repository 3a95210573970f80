// Which mailboxes are trash or junk, by the names that they have in the systems and languages that Mail
// meets. Any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "mailstore/mail_store_context.h"

namespace corvane::mailstore {

// The names in their normalized form.
const std::set<std::string, std::less<>>& trashJunkMailboxNames();

// Trimmed, in lower case, without one closing ".mbox".
std::string normalizedMailboxName(std::string_view name);

// ROWIDs of the trash and junk mailboxes, by the last component of their urls: a folder inside the trash
// isn't trash. A failure is logged and gives the empty set, with which a query runs without the exclusion.
std::set<std::int64_t> trashAndJunkMailboxIDs(const MailStoreContext& context,
                                              const std::string& envelopeIndexPath);

// The condition that leaves these mailboxes out, for the end of a WHERE clause; empty for the empty set.
std::string mailboxExclusion(const std::set<std::int64_t>& mailboxIDs);

} // namespace corvane::mailstore
