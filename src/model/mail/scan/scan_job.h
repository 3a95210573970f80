// The background part of a scan: reads the store, reports the growing list at most once a second, and returns
// the whole. Works on values alone, on a thread of the runner.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "mailstore/scan/mail_data_scanner.h"
#include "model/mail/messages/message_catalog.h"
#include "model/mail/scan/empty_scan.h"
#include "model/mail/store/mail_store.h"
#include "model/tasks/task_slot.h"
#include "records/statistics_records.h"

namespace corvane {

struct ScanJob {
    MailDataScanner scanner;
    std::vector<std::string> accountNames; // for the summaries; of a scope to come those that it brings
    MailStore store;
};

// What is shown of a running scan.
struct ScanStep {
    SharedMessageSet set;
    MailScanSummary summary;
    std::string timingLog;
    std::string line;
};

// There is no folder of Mail.
struct MissingMailRoot {};

// The scan broke off, with the user's text.
struct BrokenScan {
    std::string message;
};

struct FinishedScan {
    SharedMessageSet set;
    MailScanSummary summary;
    std::string timingLog;
    std::optional<EmptyScanMessage> empty; // present when the index had no row for the scan
};

using ScanOutcome = std::variant<MissingMailRoot, BrokenScan, FinishedScan>;

// Absent when cancelled. A scan whose scope is to come reports and returns nothing before it has come.
std::optional<ScanOutcome> runScan(ScanJob job, const ReportingTask<ScanStep>& task);

} // namespace corvane
