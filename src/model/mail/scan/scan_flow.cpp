#include "model/mail/scan/scan_flow.h"

#include <memory>
#include <set>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "mailstore/scan/scope_to_come.h"
#include "model/mail/scan/empty_scan.h"
#include "model/mail/scan/scan_job.h"
#include "platform/stop_watch.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

constexpr double applyLogThreshold = 0.02; // seconds

} // namespace

ScanFlow::ScanFlow(ModelContext& context, AccountDirectory& accounts, MessageCatalog& catalog,
                   IndexCounts& counts, ModelFilters& filters, QObject* parent)
  : QObject(parent)
  , context_(context)
  , accounts_(accounts)
  , catalog_(catalog)
  , counts_(counts)
  , filters_(filters)
  , scanTask_(context.tasks)
  , restoreTask_(context.tasks)
  , lookTask_(context.tasks) {
    connect(&accounts_, &AccountDirectory::fullRefreshFoundAccounts, this, &ScanFlow::onFullRefreshAccounts);
    connect(&accounts_, &AccountDirectory::fullRefreshFoundNone, this, [this](const QString& message) {
        if (scopeToCome_) scanTask_.cancel();
        scopeToCome_.reset();
        fail(message.toStdString());
    });
}

void ScanFlow::onFullRefreshAccounts() {
    std::set<std::string> all;
    for (const MailAccount& account : accounts_.availableAccounts()) all.insert(account.urlPrefix);
    accounts_.setSelectedAccountPrefixes(std::move(all));
    filters_.clearScope();
    if (!scopeToCome_ || !scanTask_.isRunning()) {
        scan();
        return;
    }
    clearDisplay();
    setState(MailScanState::scanning("正在准备扫描..."));
    std::exchange(scopeToCome_, nullptr)->set(selectedScope());
}

void ScanFlow::setState(MailScanState state) {
    if (state_ == state) return;
    state_ = std::move(state);
    Q_EMIT stateChanged();
}

void ScanFlow::fail(const std::string& message, bool isYearRangeInfo) {
    failureIsYearRangeInfo_ = isYearRangeInfo;
    hasLookedForLastScan_ = true;
    setState(MailScanState::failed(message));
    lookForWholeScan();
}

std::optional<Date> ScanFlow::restorableScanTime() const {
    return catalog_.state()->isPartial() ? wholeScanTime_ : std::nullopt;
}

// So that only what is there is offered.
void ScanFlow::lookForWholeScan() {
    if (!catalog_.state()->isPartial()) return;

    struct Found {
        std::optional<Date> time;
    };

    lookTask_.start(
        TaskPriority::userInitiated, MailScanCacheStore(context_.support),
        [](const MailScanCacheStore& store, const TaskHandle&) { return Found{store.cachedScanTime()}; },
        [this](const Found& found) {
            wholeScanTime_ = found.time;
            Q_EMIT restorableChanged();
        });
}

void ScanFlow::clearDisplay() {
    hasLookedForLastScan_ = true; // nobody waits for it any more
    isRestoreDropped_ = false;
    const SharedCatalogState& shown = catalog_.state();
    beforeScan_ =
        Display{shown->shown(), shown->isPartial(), shown->summary, counts_.indexed(), cacheLoadedAt_};
    catalog_.emptyForScan();
    counts_.setIndexed({{}, {}, false, {}});
    scanTimingLog_.clear();
    cacheLoadedAt_.reset();
    Q_EMIT scanStarted();
}

void ScanFlow::forgetBeforeScan() {
    if (beforeScan_) context_.tasks.discard(std::move(beforeScan_->messages));
    beforeScan_.reset();
}

ScanJob ScanFlow::makeScanJob() const {
    const MailStore store = mailStoreOf(context_);
    ScanJob job{MailDataScanner{store.context, store.rootPath, {}, {}, {}, nullptr}, {}, store};
    if (filters_.list().onlyBeforeCutoff) job.scanner.maximumYear = filters_.list().yearCutoff;
    mailstore::AccountScope scope = selectedScope();
    job.scanner.accountURLPrefixes = std::move(scope.urlPrefixes);
    job.scanner.accountNamesByPrefix = std::move(scope.namesByPrefix);
    job.accountNames = std::move(scope.names);
    return job;
}

mailstore::AccountScope ScanFlow::selectedScope() const {
    mailstore::AccountScope scope;
    for (const MailAccount& account : accounts_.availableAccounts()) {
        if (!accounts_.selectedAccountPrefixes().contains(account.urlPrefix)) continue;
        const std::string& name = scannedName(account);
        scope.urlPrefixes.push_back(account.urlPrefix);
        scope.namesByPrefix[account.urlPrefix] = name;
        scope.names.push_back(name);
    }
    return scope;
}

void ScanFlow::scan() {
    scopeToCome_.reset();
    scanTask_.cancel();
    clearDisplay();
    setState(MailScanState::scanning("正在准备扫描..."));
    start(makeScanJob());
}

void ScanFlow::start(ScanJob job) {
    scanTask_.startReporting<ScanStep>(
        TaskPriority::userInitiated, std::move(job), &runScan,
        [this](ScanStep step) { onStep(std::move(step)); },
        [this](ScanOutcome outcome) {
            if (std::holds_alternative<MissingMailRoot>(outcome)) {
                forgetBeforeScan();
                fail(missingMailRootMessage);
            }
            if (const auto* broken = std::get_if<BrokenScan>(&outcome)) onScanBroken(broken->message);
            if (auto* finished = std::get_if<FinishedScan>(&outcome)) onScanFinished(std::move(*finished));
        });
}

void ScanFlow::onStep(ScanStep step) {
    catalog_.showProgress(std::move(step.set), std::move(step.summary));
    scanTimingLog_ = std::move(step.timingLog);
    Q_EMIT timingChanged();
    setState(MailScanState::scanning(step.line));
}

void ScanFlow::onScanFinished(FinishedScan finished) {
    forgetBeforeScan();
    scanTimingLog_ = std::move(finished.timingLog);
    Q_EMIT timingChanged();
    if (finished.empty) {
        catalog_.emptyForScan(std::move(finished.summary));
        fail(finished.empty->text, finished.empty->isYearRangeInfo);
    } else {
        catalog_.setMessages(std::move(finished.set), std::move(finished.summary),
                             MessageCatalog::Files::justSeen);
        cacheLoadedAt_ = currentTimestamp();
        setState(MailScanState::finished());
        Q_EMIT scanFinished();
    }
    Q_EMIT scanEnded();
}

void ScanFlow::onScanBroken(const std::string& message) {
    if (catalog_.messages()->empty() && beforeScan_ && !beforeScan_->messages->messages->empty()) {
        cacheLoadedAt_ = beforeScan_->cacheLoadedAt;
        counts_.setIndexed(std::move(beforeScan_->counts));
        if (beforeScan_->isPartial)
            catalog_.showProgress(beforeScan_->messages, beforeScan_->summary);
        else
            catalog_.setMessages(beforeScan_->messages, beforeScan_->summary);
        Q_EMIT earlierMessagesRestored();
    }
    forgetBeforeScan();
    fail(message);
    Q_EMIT scanEnded();
}

void ScanFlow::cancelScan() {
    scanTask_.cancel();
    scopeToCome_.reset();
    accounts_.cancelFullRefresh();
    forgetBeforeScan();
    setState(MailScanState::idle());
    lookForWholeScan();
    if (std::exchange(isRestoreDropped_, false)) loadCachedScanIfNeeded(false);
}

void ScanFlow::refreshAllMailData() {
    scanTask_.cancel();
    setState(MailScanState::scanning("正在读取 Mail 邮箱列表..."));
    scopeToCome_ = std::make_shared<mailstore::ScopeToCome>();
    const MailStore store = mailStoreOf(context_);
    start({MailDataScanner{store.context, store.rootPath, {}, {}, {}, scopeToCome_}, {}, store});
    accounts_.readForFullRefresh();
}

bool ScanFlow::mayRestore() const {
    return (catalog_.messages()->empty() || catalog_.state()->isPartial()) && !state_.isScanning();
}

void ScanFlow::loadCachedScanIfNeeded(bool loadArchiveIndex) {
    if (!mayRestore()) return;
    // Each step tests again that no scan has come meanwhile.
    restoreTask_.startReporting<MailHomeSnapshot>(
        TaskPriority::userInitiated,
        RestoreJob{context_.startupLog, context_.performanceLog, MailScanCacheStore(context_.support),
                   catalog_.availabilityInputs(), context_.mailRootPath},
        &restoreScan,
        [this](const MailHomeSnapshot& snapshot) {
            if (mayRestore()) applySnapshot(snapshot);
        },
        [this, loadArchiveIndex](RestoreOutcome outcome) {
            // The accounts of a refresh may be read just now, which can still be cancelled.
            isRestoreDropped_ = !mayRestore() && !hasLookedForLastScan_;
            if (mayRestore()) restoreEnded(std::move(outcome), loadArchiveIndex);
            Q_EMIT restorableChanged();
        });
    Q_EMIT restorableChanged();
}

void ScanFlow::restoreEnded(RestoreOutcome outcome, bool loadArchiveIndex) {
    hasLookedForLastScan_ = true;
    if (std::holds_alternative<NoCachedScan>(outcome)) setState(MailScanState::idle());
    if (const auto* damaged = std::get_if<UnreadableCache>(&outcome)) fail(damaged->message);
    if (auto* restored = std::get_if<RestoredScan>(&outcome))
        applyRestored(std::move(*restored), loadArchiveIndex);
}

void ScanFlow::applySnapshot(const MailHomeSnapshot& snapshot) {
    catalog_.applyHomeSnapshot(snapshot);
    cacheLoadedAt_ = snapshot.scannedAt;
    setState(MailScanState::finished());
    Q_EMIT homeSnapshotApplied();
    context_.performanceLog.mark(fmt::format(
        "[Perf] loadHomeSnapshot applied messages={} local={} accounts={}", snapshot.summary.scannedMessages,
        snapshot.localMessageCount, snapshot.localAccountYearStats.size()));
}

void ScanFlow::applyRestored(RestoredScan restored, bool loadArchiveIndex) {
    const platform::StopWatch watch;
    const std::size_t messages = restored.set->messages->size();
    catalog_.restore(std::move(restored.set), std::move(restored.summary), std::move(restored.known),
                     std::move(restored.cached));
    cacheLoadedAt_ = restored.scannedAt;
    setState(MailScanState::finished());
    Q_EMIT cachedScanRestored(loadArchiveIndex);
    const double seconds = watch.seconds();
    if (seconds < applyLogThreshold) return;
    context_.performanceLog.mark(
        fmt::format("[Perf] loadCachedScan.apply {:.3f}s messages={} localStats={} accountStats={}", seconds,
                    messages, restored.localStatCount, restored.accountStatCount));
}

} // namespace corvane
