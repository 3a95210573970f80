// One scan: turns the store into batches of message records. A value, its request with the operation that
// runs it; the scan itself has no state outside of the call.
#pragma once

#include <stop_token>

#include "mailstore/scan/record_batch.h"
#include "mailstore/scan/scan_request.h"

namespace corvane {

class MailDataScanner : public mailstore::ScanRequest {
  public:
    using Batch = mailstore::RecordBatch;
    using BatchHandler = mailstore::BatchHandler;

    // Runs the scan on the calling thread, with parallel lanes for the parsing. The handler is called on the
    // calling thread: first with an empty batch, last with the rest. Without a usable index every message
    // file is read instead. Throws MailIndexQueryError before any batch, and mime::MessageFileError, behind
    // the empty batch, when there is no root. After a requested stop it returns within 160 records, without
    // the last batch.
    void scanBatches(const BatchHandler& handle, const std::stop_token& stop = {}) const;
};

} // namespace corvane
