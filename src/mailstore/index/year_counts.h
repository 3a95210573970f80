// The counts around a list of local messages: how many messages the index knows a year, how many of them have
// no file, and how far back the store goes. Counts are of distinct messages, so copies in several mailboxes
// count once, without trash and junk. Years are local years. Without a usable index there are none; nullopt
// says that the index couldn't be asked. Background work, long queries; any thread.
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

// A row with a whole file, and the year in which Mail's own search by the date of receipt finds it. That of a
// list is the year of the shown date, which may be another.
struct StoredRow {
    std::int64_t rowID = 0;
    std::int64_t receivedYear = 0;
};

// Messages of which no copy has a file that can be seen, by year, and those of them that Mail holds in part
// (their first parts are on this machine, their attachments aren't) or that lie in a folder that nobody can
// look into: neither is known to be on the server alone. Years without any are left out.
struct UndownloadedYears {
    YearCounts all;
    YearCounts partial;
    // By the year of receipt: messages of which nothing is on this machine, and the partial ones. Here mail
    // counts that has no message id as well.
    YearCounts aloneByReceipt;
    YearCounts partialByReceipt;
    std::vector<StoredRow> stored;
};

// Lists folders of the store.
std::optional<UndownloadedYears> undownloadedYears(const MailStoreContext& context,
                                                   const std::string& rootPath,
                                                   const std::vector<std::string>& accountURLPrefixes);

// All of them.
std::optional<YearCounts> undownloadedYearCounts(const MailStoreContext& context, const std::string& rootPath,
                                                 const std::vector<std::string>& accountURLPrefixes);

// Over all accounts, trash too; the year is of UTC. Nullopt also for an index without messages.
std::optional<std::int64_t> queryOldestIndexedYear(const MailStoreContext& context,
                                                   const std::string& rootPath);

// Numbers of rows.
struct FilePresenceSample {
    std::int64_t present = 0;
    std::int64_t missing = 0;
    std::int64_t checked = 0;
};

// Looks for the files of some rows of one mailbox.
FilePresenceSample sampleMessageFilePresence(const std::string& rootPath, const std::string& mailboxURL,
                                             const std::vector<std::int64_t>& rowIDs);

} // namespace corvane::mailstore
