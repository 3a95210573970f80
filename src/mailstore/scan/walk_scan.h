// A scan of a store without a usable index: every message file below the root is read. Only messages with
// attachments become records. One thread.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "mailstore/folders/attachment_file_locator.h"
#include "mailstore/scan/batch_stream.h"
#include "mailstore/scan/scan_request.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "records/file_url.h"
#include "records/mail_message_record.h"
#include "worker/mail_worker_client.h"
#include "worker/worker_session.h"

namespace corvane::mailstore {

class WalkScan {
  public:
    // The request and the metrics must outlive the scan.
    WalkScan(const ScanRequest& request, ScanTimingMetrics& timing);

    // Reads the files until the last one or a requested stop; the first batch is empty. Throws
    // mime::MessageFileError when there is no root.
    void run(BatchStream& batches, const std::stop_token& stop);

  private:
    std::optional<MailMessageRecord> consumeMessage(const FileURL& file, const std::stop_token& stop);
    std::optional<MailMessageRecord> parseMessage(const FileURL& file, const std::stop_token& stop);
    bool isImported(const FileURL& file);

    const ScanRequest& request_;
    ScanTimingMetrics& timing_;
    MailAttachmentFileLocator::Index attachments_;
    MailWorkerClient client_;
    std::unique_ptr<MailWorkerClient::Session> worker_; // null when none could be started
    std::map<std::string, bool, std::less<>> importedByMailbox_;
};

} // namespace corvane::mailstore
