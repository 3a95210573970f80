#include "mailstore/mail_data_scanner.h"

#include <utility>

#include "mailstore/batch_stream.h"
#include "mailstore/indexed_records.h"
#include "mailstore/walk_scan.h"
#include "records/console_log.h"

namespace corvane {

namespace {

using mailstore::BatchStream;

constexpr std::size_t recordsBetweenStopTests = 160;

// False when a stop was requested.
bool handOver(mailstore::RecordPieces pieces, BatchStream& batches, ScanTimingMetrics& timing,
              const std::stop_token& stop) {
    const SecondsCounter elapsed(timing.enumerationSeconds);
    for (const auto& piece : pieces) batches.expect(piece.size());
    batches.flush();
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

} // namespace

void MailDataScanner::scanBatches(const BatchHandler& handle, const std::stop_token& stop) const {
    ScanTimingMetrics timing;
    BatchStream batches(handle, timing);
    try {
        auto pieces = mailstore::readIndexedRecords(*this, timing, stop);
        if (!pieces)
            mailstore::WalkScan(*this, timing).run(batches, stop);
        else if (!handOver(std::move(*pieces), batches, timing, stop))
            return;
    } catch (const ScanStopped&) {
        return;
    }
    consoleLine("[Corvane][scan-done] " + batches.summary());
    batches.flush();
}

} // namespace corvane
