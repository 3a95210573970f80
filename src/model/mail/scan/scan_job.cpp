#include "model/mail/scan/scan_job.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <iterator>
#include <stop_token>
#include <utility>

#include <fmt/format.h>

#include "listing/scan_deduplication.h"
#include "mailstore/sqlite/mail_index_query_error.h"
#include "model/mail/scan/unplugged_disk.h"
#include "platform/threads/parallel.h"
#include "records/logs/console_log.h"

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds displayInterval{1};

bool sortsBefore(const MailMessageRecord& a, const MailMessageRecord& b) {
    if (a.date.has_value() != b.date.has_value()) return a.date.has_value();
    return a.date ? *a.date > *b.date : a.id < b.id;
}

// The scanner delivers in this order already but for what duplicates move, so the test saves most sorts.
// Messages of one second go by subject, which is how the list shows them: it can then be this very list.
void sortForDisplay(MessageList& messages) {
    if (!std::is_sorted(messages.begin(), messages.end(), sortsBefore)) {
        std::stable_sort(messages.begin(), messages.end(), sortsBefore);
    }
    const auto startsNewSecond = [](const MailMessageRecord& a, const MailMessageRecord& b) {
        return !a.date || a.date != b.date;
    };
    for (auto first = messages.begin(); first != messages.end();) {
        const auto last = std::ranges::adjacent_find(first, messages.end(), startsNewSecond);
        const auto end = last == messages.end() ? last : std::next(last);
        if (end - first > 1) {
            std::stable_sort(first, end,
                             [](const auto& a, const auto& b) { return compareByDate(a, b, false); });
        }
        first = end;
    }
}

std::string progressLine(const MailDataScanner& scanner, const MailDataScanner::Batch& batch,
                         std::size_t found) {
    if (!scanner.maximumYear) {
        return fmt::format("已扫描 {} 封邮件，发现 {} 封含附件邮件", batch.scannedCount, found);
    }
    return fmt::format("正在检查 {} 年及以前邮件：已访问 {} 条索引，纳入 {} 封邮件，发现 {} 封含附件邮件",
                       *scanner.maximumYear, batch.visitedCount, batch.scannedCount, found);
}

// What the scan alone holds while batches come.
class ScanProgress {
  public:
    explicit ScanProgress(const ScanJob& job)
      : job_(job) {}

    void add(MailDataScanner::Batch batch) {
        records_.reserve(batch.foundCount);
        records_.merge(std::move(batch.records));
        batch.records.clear();
        last_ = std::move(batch);
    }

    // At most once a second, the first time at once.
    [[nodiscard]] bool isDisplayDue() {
        const auto now = Clock::now();
        if (lastDisplay_ && now - *lastDisplay_ < displayInterval) return false;
        lastDisplay_ = now;
        return true;
    }

    [[nodiscard]] MailScanSummary summary(const MessageList& messages) const {
        MailScanSummary summary = makeSummary(allOf(messages), last_.scannedCount);
        summary.accountNames = job_.accountNames;
        return summary;
    }

    // One record a message stands in the store already, so nothing is left to merge at the end.
    [[nodiscard]] SharedMessageList finalList() {
        MessageList messages = std::move(records_).take();
        sortForDisplay(messages);
        return std::make_shared<const MessageList>(std::move(messages));
    }

    [[nodiscard]] const MailDataScanner::Batch& last() const { return last_; }

    [[nodiscard]] ScanStep step() const {
        SharedMessageSet set = MessageSet::passing(std::make_shared<const MessageList>(records_.records()));
        MailScanSummary shown = summary(*set->messages);
        return {std::move(set), std::move(shown), last_.timingLog,
                progressLine(job_.scanner, last_, records_.records().size())};
    }

  private:
    const ScanJob& job_;
    DeduplicatedRecords records_;
    MailDataScanner::Batch last_;
    std::optional<Clock::time_point> lastDisplay_;
};

// Waits for the accounts of a scan that began before they were known; false when it is cancelled first.
bool completeScope(ScanJob& job, const std::stop_token& stop) {
    if (!job.scanner.scopeToCome) return true;
    auto scope = job.scanner.scopeToCome->wait(stop);
    if (!scope) return false;
    job.accountNames = std::move(scope->names);
    return true;
}

FinishedScan finish(const ScanJob& job, ScanProgress& progress) {
    FinishedScan finished;
    const SharedMessageList messages = progress.finalList();
    const bool hasVisited = progress.last().visitedCount >= 1;
    const bool isComplete = hasVisited && !job.scanner.maximumYear;
    platform::parallelCalls([&] { finished.set = MessageSet::make(messages, isComplete); },
                            [&] { finished.summary = progress.summary(*messages); });
    finished.timingLog = progress.last().timingLog;
    if (!hasVisited) finished.empty = emptyScanFailureMessage(job.store, job.scanner.maximumYear);
    return finished;
}

// For what has no text for the user.
constexpr const char* unknownFailureMessage = "读取 Mail 邮件时出错，扫描没有完成。请稍后重试。";

std::optional<ScanOutcome> scan(ScanJob& job, const ReportingTask<ScanStep>& task) {
    const ScannedDisk disk(job.store.rootPath);
    if (!disk.hasStore()) return MissingMailRoot();
    ScanProgress progress(job);
    try {
        job.scanner.scanBatches(
            [&](MailDataScanner::Batch&& batch) {
                if (batch.visitedCount == 0) completeScope(job, task.stopToken());
                progress.add(std::move(batch));
                if (task.isCancelled() || !progress.isDisplayDue()) return;
                ScanStep step = progress.step();
                consoleLine("[Corvane][scan-ui] " + step.line);
                task.report(std::move(step));
            },
            task.stopToken());
    } catch (const MailIndexQueryError& error) {
        return BrokenScan{error.errorDescription().value_or(unknownFailureMessage)};
    } catch (const std::exception& error) {
        consoleLine(fmt::format("[Corvane][scan] {}", error.what()));
        return BrokenScan{unknownFailureMessage};
    }
    if (task.isCancelled()) return std::nullopt;
    if (disk.wasUnplugged()) return BrokenScan{unpluggedDiskMessage};
    return finish(job, progress);
}

} // namespace

std::optional<ScanOutcome> runScan(ScanJob job, const ReportingTask<ScanStep>& task) {
    job.store.context.stop = task.stopToken();
    auto outcome = scan(job, task);
    if (!completeScope(job, task.stopToken())) return std::nullopt;
    return outcome;
}

} // namespace corvane
