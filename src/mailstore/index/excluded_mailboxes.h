// The trash and junk mailboxes of an index, which counts and comparisons leave out. Any thread.
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "mailstore/mail_store_context.h"

namespace corvane::mailstore {

// Their ROWIDs, read from the index by SQLite's library. Empty after a failure, which is logged; a query then
// runs without the exclusion.
std::set<std::int64_t> trashAndJunkMailboxIDs(const MailStoreContext& context,
                                              const std::string& envelopeIndexPath);

// The condition that leaves these mailboxes out, for the end of a WHERE clause; empty for the empty set.
std::string mailboxExclusion(const std::set<std::int64_t>& mailboxIDs);

} // namespace corvane::mailstore
