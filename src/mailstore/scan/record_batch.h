// What a scan hands over while it runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "records/mail_message_record.h"

namespace corvane::mailstore {

struct RecordBatch {
    std::int64_t scannedCount = 0; // messages so far
    std::int64_t visitedCount = 0; // the same
    std::size_t foundCount = 0;    // messages that the whole scan will visit; 0 where that isn't known
    MessageList records;           // only what is new since the last batch
    std::string timingLog;         // ScanTimingMetrics::summary so far
};

// Called on the thread that scans.
using BatchHandler = std::function<void(RecordBatch&&)>;

} // namespace corvane::mailstore
