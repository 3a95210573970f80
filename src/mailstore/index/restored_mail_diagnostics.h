// A written report on what the index knows of the mail by year and mailbox, and how much of that is on the
// disk: for support, when mail was restored into Mail and a scan shows less than was expected.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mailstore/mail_store_context.h"
#include "records/mail_account.h"

namespace corvane::mailstore {

// Writes the log of restored mail anew, for those of the accounts that are selected. Only reads the store;
// failures are lines of the log. Background work, a long query for each account.
void logRestoredMailDiagnostics(const MailStoreContext& context, const std::string& rootPath,
                                const std::vector<MailAccount>& accounts,
                                const std::vector<std::string>& selectedPrefixes);

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
