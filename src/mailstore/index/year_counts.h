// How many messages the index knows a year, and how far back the store goes. Counts are of distinct messages,
// so copies in several mailboxes count once, without trash and junk. Years are local years. Without a usable
// index there are none; nullopt says that the index couldn't be asked. Background work, long queries; any
// thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "mailstore/mail_store_context.h"

namespace corvane::mailstore {

using YearCounts = std::map<std::int64_t, std::int64_t>;

// Messages by year. No prefixes mean all accounts.
std::optional<YearCounts> indexedYearDistinctCounts(const MailStoreContext& context,
                                                    const std::string& rootPath,
                                                    const std::vector<std::string>& accountURLPrefixes);

// Over all accounts, trash too; the year is of UTC. Nullopt also for an index without messages.
std::optional<std::int64_t> queryOldestIndexedYear(const MailStoreContext& context,
                                                   const std::string& rootPath);

} // namespace corvane::mailstore
