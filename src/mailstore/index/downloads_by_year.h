// What of the mail that the index knows has files on this machine, by year: what Mail has downloaded, what it
// holds in part, and what is on the server alone. Without trash and junk; by receipt without those of servers
// alone. Years are local years. Without a
// usable index there is none; nullopt says that the index couldn't be asked. Background work, a long query
// and a listing of the store's folders; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mailstore/index/year_counts.h"
#include "mailstore/mail_store_context.h"

namespace corvane::mailstore {

// A row with a whole file, and the year in which Mail's own search by the date of receipt finds it. That of a
// list is the year of the shown date, which may be another.
struct StoredRow {
    std::int64_t rowID = 0;
    std::int64_t receivedYear = 0;
};

// Messages are counted once, whatever number of copies they have. Years without any are left out.
struct DownloadsByYear {
    // Of which no copy has a file that can be seen.
    YearCounts undownloaded;
    // Those of them that Mail holds in part (their first parts are on this machine, their attachments aren't)
    // or that lie in a folder that nobody can look into: neither is known to be on the server alone.
    YearCounts partial;
    // By the year of receipt: messages of which a copy isn't on this machine, and the partial ones. Here mail
    // counts that has no message id as well, and a copy whatever other copies are here: no one knows whether
    // it is the same mail.
    YearCounts aloneByReceipt;
    YearCounts partialByReceipt;
    std::vector<StoredRow> storedRows;
};

// No prefixes mean all accounts.
std::optional<DownloadsByYear> downloadsByYear(const MailStoreContext& context, const std::string& rootPath,
                                               const std::vector<std::string>& accountURLPrefixes);

// The undownloaded messages alone.
std::optional<YearCounts> undownloadedYearCounts(const MailStoreContext& context, const std::string& rootPath,
                                                 const std::vector<std::string>& accountURLPrefixes);

} // namespace corvane::mailstore
