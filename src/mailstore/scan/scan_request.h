// What a scan is asked for: a store, and which of its messages. A value that the parts of a scan read; it
// must outlive the scan.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/mail_store_context.h"
#include "mailstore/scan/scope_to_come.h"

namespace corvane::mailstore {

struct ScanRequest {
    MailStoreContext context;
    std::string rootPath;                        // the folder above the version folders
    std::optional<std::int64_t> maximumYear;     // absent for every year
    std::vector<std::string> accountURLPrefixes; // empty for every account
    AccountNames accountNamesByPrefix;           // keys and names; records of other accounts name none
    // Of accounts that are read while the scan is at work, which then stand for the two above. Null when
    // they are known.
    std::shared_ptr<ScopeToCome> scopeToCome{};
};

} // namespace corvane::mailstore
