// Paces the records of a scan into batches for its handler. One thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "mailstore/scan/record_batch.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "platform/stop_watch.h"
#include "records/mail_message_record.h"

namespace corvane::mailstore {

// A batch leaves at 40 records, at every hundredth message visited, and when none has left for a second.
class BatchStream {
  public:
    // Both must outlive the stream.
    BatchStream(const BatchHandler& handle, const ScanTimingMetrics& timing)
      : handle_(handle)
      , timing_(timing) {}

    // Adds to the number of messages that the scan will visit.
    void expect(std::size_t count) { expected_ += count; }

    // One message visited; without a record it only counts.
    void addVisited(std::optional<MailMessageRecord>&& record) {
        ++visited_;
        if (record) pending_.push_back(std::move(*record));
        if (pending_.size() >= fullBatch || visited_ % progressStep == 0 ||
            sinceLastBatch_.elapsed() >= longestSilence)
            flush();
    }

    // Hands over what was collected, which may be no record.
    void flush() {
        RecordBatch batch{.scannedCount = visited_,
                          .visitedCount = visited_,
                          .foundCount = expected_,
                          .records = std::exchange(pending_, {}),
                          .timingLog = summary()};
        pending_.reserve(fullBatch);
        handle_(std::move(batch));
        sinceLastBatch_ = {};
    }

    [[nodiscard]] std::string summary() const {
        return timing_.summary(visited_, visited_, timing_.matchedMessages);
    }

  private:
    static constexpr std::size_t fullBatch = 40;
    static constexpr std::int64_t progressStep = 100;
    static constexpr std::chrono::seconds longestSilence{1};

    const BatchHandler& handle_;
    const ScanTimingMetrics& timing_;
    MessageList pending_;
    std::size_t expected_ = 0;
    std::int64_t visited_ = 0;
    platform::StopWatch sinceLastBatch_;
};

} // namespace corvane::mailstore
