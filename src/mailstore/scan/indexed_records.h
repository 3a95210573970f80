// The records of the messages that the index knows and that lie on this disk, made from the rows of the query
// while the shell still writes them. Background work.
#pragma once

#include <optional>
#include <stop_token>
#include <vector>

#include "mailstore/scan/scan_request.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "platform/temporary_file.h"
#include "records/mail_message_record.h"

namespace corvane::mailstore {

// A message that can't be parsed has no record.
using ScannedRecords = std::vector<std::optional<MailMessageRecord>>;

struct IndexedRecords {
    std::vector<ScannedRecords> pieces; // in the order of the query, cut anyhow
    // Not needed any more, but to remove a large file takes a while that the records needn't wait for.
    platform::TemporaryFile output;
};

// Nothing when the index isn't there to be used. Throws MailIndexQueryError, and ScanStopped after a
// requested stop. Fills in what the timing tells of the index and the attachments.
std::optional<IndexedRecords> readIndexedRecords(const ScanRequest& request, ScanTimingMetrics& timing,
                                                 const std::stop_token& stop);

} // namespace corvane::mailstore
