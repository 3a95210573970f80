// From a row of the index and what is stored beside its message file to a record.
#pragma once

#include <vector>

#include "mailstore/folders/attachment_root.h"
#include "mailstore/index/indexed_messages.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "records/file_url.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane::mailstore {

// The record of a candidate with its attachments: those that the index names and those that are stored beside
// the message, a stored one in place of a named one of the same name. Without attachments it is a record too.
// The labels of its mailbox are left to the caller.
// Counts the message in the metrics. Any thread, with a `texts` of its own.
MailMessageRecord parseIndexedMessage(const FileURL& file, const IndexedMessageCandidate& candidate,
                                      const std::vector<StoredAttachment>& storedAttachments,
                                      TextInterner& texts, ScanTimingMetrics& timing);

} // namespace corvane::mailstore
