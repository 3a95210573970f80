// One scan: turns the store into batches of message records. A value; the scan itself has no state outside of
// the call.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "mailstore/folders/attachment_file_locator.h"
#include "mailstore/folders/mailbox_url.h"
#include "mailstore/index/indexed_messages.h"
#include "mailstore/mail_store_context.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "records/mail_message_record.h"

namespace corvane {

class MailDataScanner {
  public:
    struct Batch {
        std::int64_t scannedCount = 0; // totals so far
        std::int64_t visitedCount = 0;
        std::size_t foundCount = 0; // messages that the whole scan will visit
        MessageList records;        // only what is new since the last batch
        std::string timingLog;
    };

    using BatchHandler = std::function<void(Batch&&)>;

    MailStoreContext context;
    std::string rootPath;
    std::optional<std::int64_t> maximumYear;
    std::vector<std::string> accountURLPrefixes; // empty for every account
    mailstore::AccountNames accountNamesByPrefix;

    // Runs the scan on the calling thread, which is the scan's task, with parallel lanes for the parsing;
    // every batch is handed over on this thread, the first and the last one always. Throws
    // MailIndexQueryError, before any batch. After a requested stop it returns at the next chunk, without the
    // last batch.
    void scanBatches(const BatchHandler& handle, const std::stop_token& stop = {}) const;
};

namespace mailstore {

// The record of a candidate with its attachments: those that the index names and those that are stored beside
// the message, a stored one in place of a named one of the same name. Without attachments it is a record too.
MailMessageRecord parseIndexedMessage(const FileURL& file, const IndexedMessageCandidate& candidate,
                                      const std::vector<StoredAttachment>& storedAttachments,
                                      const MailboxLabels& labels, TextInterner& texts,
                                      ScanTimingMetrics& timing);

} // namespace mailstore

} // namespace corvane
