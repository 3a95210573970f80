// The trash and junk mailboxes of an index, which counts and comparisons leave out. Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "mailstore/mail_store_context.h"

namespace corvane::mailstore {

// Their ROWIDs, read from the index by SQLite's library. Empty for an index that can't be opened or has no
// such table, which is logged; a query then runs without the exclusion. Nullopt when there was no time to
// look: the index is locked, the read met its limit, or a stop was requested.
std::optional<std::set<std::int64_t>> trashAndJunkMailboxIDs(const MailStoreContext& context,
                                                             const std::string& envelopeIndexPath);

// The condition that leaves these mailboxes out, for the end of a WHERE clause; empty for the empty set.
std::string mailboxExclusion(const std::set<std::int64_t>& mailboxIDs);

// From FROM to the end of WHERE: the messages `m` with their mailboxes `mb` that fulfil the condition, of
// some accounts, or of all for no prefixes, without trash and junk. Nullopt when the mailboxes couldn't be
// read.
std::optional<std::string> messagesWhere(const std::string& condition, const MailStoreContext& context,
                                         const std::string& envelopeIndexPath,
                                         const std::vector<std::string>& accountURLPrefixes);

} // namespace corvane::mailstore
