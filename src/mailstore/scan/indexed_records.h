// The records of the messages that the index knows and that lie on this disk, made from the rows of the query
// while the shell still writes them. Background work.
#pragma once

#include <optional>
#include <stop_token>
#include <vector>

#include "mailstore/scan/scan_request.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "platform/files/temporary_file.h"
#include "records/mail_message_record.h"

namespace corvane::mailstore {

// One entry a message; absent for one that can't be parsed.
using ScannedRecords = std::vector<std::optional<MailMessageRecord>>;

struct IndexedRecords {
    std::vector<ScannedRecords> pieces; // in the order of the query, of arbitrary sizes
    // The rows, no longer needed. Removed by whoever gets the records, since removing a large file takes
    // time.
    platform::TemporaryFile output;
};

// Returns nullopt when there is no index or no shell to query it. Throws MailIndexQueryError, and ScanStopped
// after a requested stop. Writes the figures about the index and the attachments into `timing`.
std::optional<IndexedRecords> readIndexedRecords(const ScanRequest& request, ScanTimingMetrics& timing,
                                                 const std::stop_token& stop);

} // namespace corvane::mailstore
