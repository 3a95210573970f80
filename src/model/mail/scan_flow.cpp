#include "model/mail/scan_flow.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <set>

#include <fmt/format.h>

#include "listing/scan_deduplication.h"
#include "mailstore/index/mail_index_query_error.h"
#include "mailstore/scan/mail_data_scanner.h"
#include "model/mail/mail_access.h"
#include "platform/directory.h"
#include "platform/parallel.h"
#include "records/logs/console_log.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds displayInterval{1};

bool goesFirst(const MailMessageRecord& a, const MailMessageRecord& b) {
    if (a.date.has_value() != b.date.has_value()) return a.date.has_value();
    return a.date ? *a.date > *b.date : a.id < b.id;
}

// The scanner delivers in this order already but for what duplicates move, so the test saves most sorts.
// Messages of one second go by subject, which is how the list shows them: it can then be this very list.
void sortForDisplay(MessageList& messages) {
    if (!std::is_sorted(messages.begin(), messages.end(), goesFirst)) {
        std::stable_sort(messages.begin(), messages.end(), goesFirst);
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

} // namespace

struct ScanFlow::ScanJob {
    MailDataScanner scanner;
    std::vector<std::string> accountNames;
    MailStore store;
    std::shared_ptr<ArchivedStatus> archivedStatus;
};

// What the scan task alone holds while batches come.
class ScanFlow::ScanProgress {
  public:
    explicit ScanProgress(const ScanJob& job)
      : job_(job) {}

    void take(MailDataScanner::Batch batch) {
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

    [[nodiscard]] SharedMessageSet displayedSet() const {
        return MessageSet::passing(std::make_shared<const MessageList>(records_.records()));
    }

    // One record a message stands in the store already, so nothing is left to merge at the end.
    [[nodiscard]] SharedMessageList finalList() {
        MessageList messages = std::move(records_).take();
        sortForDisplay(messages);
        return std::make_shared<const MessageList>(std::move(messages));
    }

    [[nodiscard]] const MailDataScanner::Batch& last() const { return last_; }

    [[nodiscard]] std::string line() const {
        return progressLine(job_.scanner, last_, records_.records().size());
    }

  private:
    const ScanJob& job_;
    DeduplicatedRecords records_;
    MailDataScanner::Batch last_;
    std::optional<Clock::time_point> lastDisplay_;
};

ScanFlow::ScanFlow(ModelContext& context, AccountDirectory& accounts, MessageCatalog& catalog,
                   IndexCounts& counts, ModelFilters& filters, QObject* parent)
  : QObject(parent)
  , context_(context)
  , accounts_(accounts)
  , catalog_(catalog)
  , counts_(counts)
  , filters_(filters)
  , scanTask_(context.tasks)
  , restoreTask_(context.tasks) {
    connect(&accounts_, &AccountDirectory::fullRefreshFoundAccounts, this, [this] {
        std::set<std::string> all;
        for (const MailAccount& account : accounts_.availableAccounts()) all.insert(account.urlPrefix);
        accounts_.setSelectedAccountPrefixes(std::move(all));
        filters_.clearScope();
        scan();
    });
    connect(&accounts_, &AccountDirectory::fullRefreshFoundNone, this,
            [this](const QString& message) { fail(message.toStdString()); });
}

void ScanFlow::setState(MailScanState state) {
    if (state_ == state) return;
    state_ = std::move(state);
    Q_EMIT stateChanged();
}

void ScanFlow::fail(const std::string& message, bool isYearRangeInfo) {
    failureIsYearRangeInfo_ = isYearRangeInfo;
    setState(MailScanState::failed(message));
}

void ScanFlow::clearDisplay() {
    beforeScan_ = Display{catalog_.messageSet(), catalog_.summary(), counts_.indexed(), cacheLoadedAt_};
    catalog_.setMessages(std::make_shared<const MessageSet>(), {});
    counts_.setIndexed({});
    scanTimingLog_.clear();
    cacheLoadedAt_.reset();
    Q_EMIT scanStarted();
}

void ScanFlow::forgetBeforeScan() {
    if (beforeScan_) context_.tasks.discard(std::move(beforeScan_->messages));
    beforeScan_.reset();
}

ScanFlow::ScanJob ScanFlow::makeScanJob() const {
    const MailStore store = mailStoreOf(context_);
    ScanJob job{
        MailDataScanner{store.context, store.rootPath, {}, {}, {}}, {}, store, catalog_.archivedStatus()};
    if (filters_.onlyBeforeCutoff()) job.scanner.maximumYear = filters_.yearCutoff();
    for (const MailAccount& account : accounts_.availableAccounts()) {
        if (!accounts_.selectedAccountPrefixes().contains(account.urlPrefix)) continue;
        const std::string& name =
            account.linkedAccountEmail ? *account.linkedAccountEmail : account.emailAddress;
        job.scanner.accountURLPrefixes.push_back(account.urlPrefix);
        job.scanner.accountNamesByPrefix[account.urlPrefix] = name;
        job.accountNames.push_back(name);
    }
    return job;
}

void ScanFlow::scan() {
    scanTask_.cancel();
    clearDisplay();
    setState(MailScanState::scanning("正在准备扫描..."));
    scanTask_.start(TaskPriority::userInitiated,
                    [this, job = makeScanJob()](const TaskHandle& task) { runScan(task, job); });
}

// On the scan's thread: touches nothing of this object but through steps on the main thread.
void ScanFlow::runScan(const TaskHandle& task, const ScanJob& job) {
    if (!platform::fileExists(job.store.rootPath)) {
        task.onMain([this] { fail(missingMailRootMessage); });
        return;
    }
    ScanProgress progress(job);
    const auto show = [&] {
        const SharedMessageSet set = progress.displayedSet();
        const std::string line = progress.line();
        consoleLine("[Corvane][scan-ui] " + line);
        task.onMain([this, set, line, summary = progress.summary(*set->messages),
                     timing = progress.last().timingLog] {
            catalog_.showProgress(set, summary);
            scanTimingLog_ = timing;
            Q_EMIT timingChanged();
            setState(MailScanState::scanning(line));
        });
    };
    try {
        job.scanner.scanBatches(
            [&](MailDataScanner::Batch&& batch) {
                progress.take(std::move(batch));
                if (!task.isCancelled() && progress.isDisplayDue()) show();
            },
            task.stopToken());
    } catch (const std::exception& error) {
        task.onMain([this, message = std::string(error.what())] { failScan(message); });
        return;
    }
    if (!task.isCancelled()) finishScan(task, job, progress);
}

void ScanFlow::finishScan(const TaskHandle& task, const ScanJob& job, ScanProgress& progress) {
    const SharedMessageList messages = progress.finalList();
    SharedMessageSet set;
    MailScanSummary summary;
    platform::parallelCalls([&] { set = MessageSet::make(messages, !job.scanner.maximumYear); },
                            [&] {
                                summary = progress.summary(*messages);
                                job.archivedStatus->prepareFor(messages);
                            });
    const bool visitedSomething = progress.last().visitedCount >= 1;
    EmptyScanMessage empty;
    if (!visitedSomething) empty = emptyScanFailureMessage(job.store, job.scanner.maximumYear);
    task.onMain([this, set, visitedSomething, empty, summary, timing = progress.last().timingLog] {
        forgetBeforeScan();
        scanTimingLog_ = timing;
        Q_EMIT timingChanged();
        catalog_.setMessages(set, summary, MessageCatalog::Files::justSeen);
        if (visitedSomething) {
            cacheLoadedAt_ = currentTimestamp();
            setState(MailScanState::finished());
            Q_EMIT scanFinished();
        } else {
            fail(empty.text, empty.isYearRangeInfo);
        }
        Q_EMIT scanEnded();
    });
}

void ScanFlow::failScan(const std::string& message) {
    if (catalog_.messages()->empty() && beforeScan_ && !beforeScan_->messages->messages->empty()) {
        cacheLoadedAt_ = beforeScan_->cacheLoadedAt;
        counts_.setIndexed(std::move(beforeScan_->counts));
        catalog_.setMessages(beforeScan_->messages, beforeScan_->summary);
        Q_EMIT earlierMessagesRestored();
    }
    forgetBeforeScan();
    fail(message);
    Q_EMIT scanEnded();
}

void ScanFlow::cancelScan() {
    scanTask_.cancel();
    forgetBeforeScan();
    setState(MailScanState::idle());
}

void ScanFlow::refreshAllMailData() {
    scanTask_.cancel();
    setState(MailScanState::scanning("正在读取 Mail 邮箱列表..."));
    accounts_.readForFullRefresh();
}

} // namespace corvane
