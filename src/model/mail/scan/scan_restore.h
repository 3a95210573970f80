// The background part of restoring the last scan from its two files: the small one for the home screen, then
// the large one. Works on values alone, on a thread of the runner.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "model/mail/messages/message_catalog.h"
#include "model/tasks/task_slot.h"
#include "platform/stop_watch.h"
#include "records/logs/performance_log.h"
#include "records/logs/startup_log.h"
#include "records/statistics_records.h"
#include "records/stores/scan_cache_store.h"

namespace corvane {

struct RestoreJob {
    const ArchiveLibraryStartupLog& startupLog;
    MailPerformanceLog& performanceLog;
    MailScanCacheStore store;
    AvailabilityInputs inputs;
    std::string mailRootPath;
    platform::StopWatch watch{};
};

struct NoCachedScan {};

// With the user's text.
struct UnreadableCache {
    std::string message;
};

struct RestoredScan {
    SharedMessageSet set;
    MailScanSummary summary;
    Date scannedAt{};
    std::optional<AvailabilityResult> known; // absent: the cache doesn't say which messages are available
    // What the cache holds, with its stamp; absent where it lacks something of it.
    std::optional<ScanCacheWrite> cached;
    // Of the local statistics, for the log.
    std::size_t localStatCount = 0;
    std::size_t accountStatCount = 0;
};

using RestoreOutcome = std::variant<NoCachedScan, UnreadableCache, RestoredScan>;

// Reports the home snapshot when there is a current one, before the large file is read.
RestoreOutcome restoreScan(const RestoreJob& job, const ReportingTask<MailHomeSnapshot>& task);

} // namespace corvane
