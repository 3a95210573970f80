// The records of a scan on their way to who asked for it. One thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "mailstore/scan/record_batch.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "records/mail_message_record.h"

namespace corvane::mailstore {

// Collects records and hands them over by the three rules: enough records, enough messages visited, or enough
// time since the last batch.
class BatchStream {
  public:
    BatchStream(const BatchHandler& handle, const ScanTimingMetrics& timing)
      : handle_(handle)
      , timing_(timing) {}

    // So many more will be visited.
    void expect(std::size_t count) { expected_ += count; }

    void addVisited(std::optional<MailMessageRecord>&& record) {
        ++visited_;
        if (record) pending_.push_back(std::move(*record));
        if (pending_.size() >= fullBatch || visited_ % progressStep == 0 ||
            ScanTimingMetrics::Clock::now() - lastBatch_ >= longestSilence)
            flush();
    }

    void flush() {
        RecordBatch batch{.scannedCount = visited_,
                          .visitedCount = visited_,
                          .foundCount = expected_,
                          .records = std::exchange(pending_, {}),
                          .timingLog = summary()};
        pending_.reserve(fullBatch);
        handle_(std::move(batch));
        lastBatch_ = ScanTimingMetrics::Clock::now();
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
    ScanTimingMetrics::Clock::time_point lastBatch_ = ScanTimingMetrics::Clock::now();
};

} // namespace corvane::mailstore
