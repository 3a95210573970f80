#include "mailstore/scan/mail_data_scanner.h"

#include <cstddef>
#include <utility>

#include "mailstore/index/indexed_messages.h"
#include "mailstore/scan/batch_stream.h"
#include "mailstore/scan/indexed_records.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "mailstore/scan/walk_scan.h"
#include "mailstore/seconds_counter.h"
#include "records/logs/console_log.h"

namespace corvane {

namespace {

using mailstore::BatchStream;

constexpr std::size_t recordsBetweenStopTests = 160;

// False when a stop was requested.
bool deliver(mailstore::IndexedRecords& found, BatchStream& batches, ScanTimingMetrics& timing,
             const std::stop_token& stop) {
    const SecondsCounter elapsed(timing.enumerationSeconds);
    batches.expect(found.size());
    batches.flush();
    for (std::size_t visited = 0; visited < found.size(); ++visited) {
        if (visited % recordsBetweenStopTests == 0 && stop.stop_requested()) return false;
        auto record = found.next();
        if (record) ++timing.matchedMessages;
        batches.addVisited(std::move(record));
    }
    return true;
}

void walk(mailstore::ScanRequest& request, BatchStream& batches, ScanTimingMetrics& timing,
          const std::stop_token& stop) {
    if (request.scopeToCome) {
        const auto scope = request.scopeToCome->wait(stop);
        if (!scope) throw ScanStopped();
        request.accountNamesByPrefix = scope->namesByPrefix;
    }
    mailstore::WalkScan(request, timing).run(batches, stop);
}

} // namespace

void MailDataScanner::scanBatches(const BatchHandler& handle, const std::stop_token& stop) const {
    ScanTimingMetrics timing;
    BatchStream batches(handle, timing);
    ScanRequest request(*this);
    request.context.stop = stop;
    try {
        auto found = mailstore::readIndexedRecords(request, timing);
        if (!found)
            walk(request, batches, timing, stop);
        else if (!deliver(*found, batches, timing, stop))
            return;
    } catch (const ScanStopped&) {
        return;
    }
    consoleLine("[Corvane][scan-done] " + batches.summary());
    batches.flush();
}

} // namespace corvane
