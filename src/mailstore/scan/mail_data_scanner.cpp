#include "mailstore/scan/mail_data_scanner.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "mailstore/index/indexed_messages.h"
#include "mailstore/scan/batch_stream.h"
#include "mailstore/scan/indexed_records.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "mailstore/scan/walk_scan.h"
#include "mailstore/seconds_counter.h"
#include "platform/files/temporary_file.h"
#include "platform/parallel.h"
#include "records/logs/console_log.h"

namespace corvane {

namespace {

using mailstore::BatchStream;

constexpr std::size_t recordsBetweenStopTests = 160;

// False when a stop was requested.
bool addAll(std::vector<mailstore::ScannedRecords>& pieces, BatchStream& batches, ScanTimingMetrics& timing,
            const std::stop_token& stop) {
    std::size_t visited = 0;
    for (auto& piece : pieces) {
        for (auto& record : piece) {
            if (visited++ % recordsBetweenStopTests == 0 && stop.stop_requested()) return false;
            if (record) ++timing.matchedMessages;
            batches.addVisited(std::move(record));
        }
        piece = {};
    }
    return true;
}

bool handOver(mailstore::IndexedRecords found, BatchStream& batches, ScanTimingMetrics& timing,
              const std::stop_token& stop) {
    const SecondsCounter elapsed(timing.enumerationSeconds);
    platform::CallAhead removal([&] { const platform::TemporaryFile unneeded = std::move(found.output); });
    for (const auto& piece : found.pieces) batches.expect(piece.size());
    batches.flush();
    const bool isWhole = addAll(found.pieces, batches, timing, stop);
    removal.wait();
    return isWhole;
}

} // namespace

void MailDataScanner::scanBatches(const BatchHandler& handle, const std::stop_token& stop) const {
    ScanTimingMetrics timing;
    BatchStream batches(handle, timing);
    try {
        auto found = mailstore::readIndexedRecords(*this, timing, stop);
        if (!found)
            mailstore::WalkScan(*this, timing).run(batches, stop);
        else if (!handOver(std::move(*found), batches, timing, stop))
            return;
    } catch (const ScanStopped&) {
        return;
    }
    consoleLine("[Corvane][scan-done] " + batches.summary());
    batches.flush();
}

} // namespace corvane
