#include "mailstore/mail_data_scanner.h"

#include <utility>

#include "mailstore/indexed_records.h"
#include "records/console_log.h"

namespace corvane {

namespace {

constexpr std::size_t recordsBetweenStopTests = 160;
constexpr std::size_t fullBatch = 40;
constexpr std::int64_t progressStep = 100;
constexpr std::chrono::seconds longestSilence{1};

// Collects records and hands them over by the three rules: enough records, enough messages visited, or enough
// time since the last batch.
class BatchStream {
  public:
    BatchStream(const MailDataScanner::BatchHandler& handle, ScanTimingMetrics& timing)
      : handle_(handle)
      , timing_(timing) {}

    void expect(std::size_t count) { expected_ += count; }

    void addVisited(std::optional<MailMessageRecord> record) {
        ++visited_;
        if (record) {
            ++timing_.matchedMessages;
            pending_.push_back(std::move(*record));
        }
        if (pending_.size() >= fullBatch || visited_ % progressStep == 0 ||
            ScanTimingMetrics::Clock::now() - lastBatch_ >= longestSilence)
            flush();
    }

    void flush() {
        MailDataScanner::Batch batch{.scannedCount = visited_,
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
    const MailDataScanner::BatchHandler& handle_;
    ScanTimingMetrics& timing_;
    MessageList pending_;
    std::size_t expected_ = 0;
    std::int64_t visited_ = 0;
    ScanTimingMetrics::Clock::time_point lastBatch_ = ScanTimingMetrics::Clock::now();
};

// False when a stop was requested.
bool handOver(mailstore::RecordPieces pieces, BatchStream& batches, const std::stop_token& stop) {
    std::size_t visited = 0;
    for (auto& piece : pieces) {
        for (auto& record : piece) {
            if (visited++ % recordsBetweenStopTests == 0 && stop.stop_requested()) return false;
            batches.addVisited(std::move(record));
        }
        piece = {};
    }
    return true;
}

} // namespace

void MailDataScanner::scanBatches(const BatchHandler& handle, const std::stop_token& stop) const {
    ScanTimingMetrics timing;
    BatchStream batches(handle, timing);
    try {
        auto pieces = mailstore::readIndexedRecords(*this, timing, stop);
        for (const auto& piece : pieces) batches.expect(piece.size());
        batches.flush();
        const SecondsCounter elapsed(timing.enumerationSeconds);
        if (!handOver(std::move(pieces), batches, stop)) return;
    } catch (const ScanStopped&) {
        return;
    }
    consoleLine("[Corvane][scan-done] " + batches.summary());
    batches.flush();
}

} // namespace corvane
