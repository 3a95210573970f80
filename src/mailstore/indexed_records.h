// The records of the messages that the index knows and that lie on this disk, made from the rows of the query
// while the shell still writes them. Background work.
#pragma once

#include <optional>
#include <stop_token>
#include <vector>

#include "mailstore/mail_data_scanner.h"
#include "mailstore/scan_timing_metrics.h"
#include "records/mail_message_record.h"

namespace corvane::mailstore {

// In the order of the query, cut anyhow. A message that can't be parsed has no record.
using RecordPieces = std::vector<std::vector<std::optional<MailMessageRecord>>>;

// Nothing when the index isn't there to be used. Throws MailIndexQueryError, and ScanStopped after a
// requested stop. Fills in what the timing tells of the index and the attachments.
std::optional<RecordPieces> readIndexedRecords(const MailDataScanner& scanner, ScanTimingMetrics& timing,
                                               const std::stop_token& stop);

} // namespace corvane::mailstore
