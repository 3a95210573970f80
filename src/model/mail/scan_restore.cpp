// The restore of the last scan from its two files: the small one for the home screen, then the large one.
#include <fmt/format.h>

#include <chrono>
#include <exception>
#include <memory>

#include "model/mail/scan_flow.h"
#include "records/json/json_form.h"
#include "records/stores/scan_cache_store.h"

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double applyLogThreshold = 0.02; // seconds
constexpr double totalLogThreshold = 0.05; // seconds

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Local statistics hold only messages with attachments; a snapshot that says otherwise was made under other
// rules.
bool isCurrent(const MailHomeSnapshot& snapshot) {
    for (const AccountYearStatGroup& group : snapshot.localAccountYearStats) {
        for (const YearStat& stat : group.years) {
            if (stat.messageCount != stat.withAttachmentCount) return false;
        }
    }
    return true;
}

} // namespace

struct ScanFlow::RestoredScan {
    SharedMessageSet set;
    MailScanSummary summary;
    Date scannedAt{};
    std::optional<AvailabilityResult> known;
    // From the cache where it has them but not the available ids.
    std::optional<std::vector<YearStat>> localYearStats;
    std::optional<std::vector<AccountYearStatGroup>> localAccountYearStats;
};

namespace {

void sumLocal(AvailabilityResult& result) {
    for (const YearStat& stat : result.localYearStats) {
        result.localCount += stat.messageCount;
        result.localBytes += stat.messageBytes;
    }
}

AvailabilityResult knownAvailability(const MessageList& messages, const std::vector<SharedText>& ids,
                                     const std::vector<MailAccount>& accounts, std::size_t& counted) {
    AvailabilityResult result;
    const SharedTextSet told(ids.begin(), ids.end()); // by a file: it may name what isn't in the list
    auto available = std::make_shared<SharedTextSet>();
    available->reserve(told.size());
    MessageRefs local;
    for (const MailMessageRecord& message : messages) {
        if (!told.contains(message.id)) continue;
        available->insert(message.id);
        if (!message.attachments.empty()) local.push_back(&message);
    }
    counted = local.size();
    result.localYearStats = computeYearStats(local);
    result.accountYearStats = computeAccountYearStats(local, accounts);
    result.yearByID = std::make_shared<const YearByID>(computeMessageYears(messages));
    result.locallyAvailableIDs = std::move(available);
    sumLocal(result);
    return result;
}

} // namespace

// Throws JsonError for a repeated id: such a cache is damaged. `counted` takes the number of local
// candidates.
ScanFlow::RestoredScan ScanFlow::makeRestored(MailScanCache cache, const std::vector<MailAccount>& accounts,
                                              std::size_t& counted) {
    RestoredScan restored;
    restored.summary = std::move(cache.summary);
    restored.scannedAt = cache.scannedAt;
    try {
        restored.set = MessageSet::make(std::make_shared<const MessageList>(std::move(cache.messages)), true);
    } catch (const std::logic_error& error) {
        throw JsonError(error.what());
    }
    if (cache.locallyAvailableMessageIDs) {
        restored.known =
            knownAvailability(*restored.set->messages, *cache.locallyAvailableMessageIDs, accounts, counted);
        restored.localYearStats = restored.known->localYearStats;
        restored.localAccountYearStats = restored.known->accountYearStats;
    } else {
        restored.localYearStats = std::move(cache.localYearStats);
        restored.localAccountYearStats = std::move(cache.localAccountYearStats);
    }
    return restored;
}

struct ScanFlow::RestoreJob {
    ModelContext& context;
    MailScanCacheStore store;
    std::vector<MailAccount> accounts;
    bool loadArchiveIndex = false;
    std::shared_ptr<ArchivedStatus> archivedStatus;
    Clock::time_point start = Clock::now();

    void mark(const std::string& text) const {
        context.startupLog.mark(fmt::format("{} elapsed={:.3f}s", text, secondsSince(start)));
    }
};

bool ScanFlow::mayRestore() const {
    return catalog_.messages()->empty() && !state_.isScanning();
}

void ScanFlow::loadCachedScanIfNeeded(bool loadArchiveIndex) {
    if (!mayRestore()) return;
    const RestoreJob job{context_, MailScanCacheStore(context_.support), accounts_.availableAccounts(),
                         loadArchiveIndex, catalog_.archivedStatus()};
    restoreTask_.start(TaskPriority::userInitiated, [this, job](const TaskHandle& task) {
        job.context.startupLog.mark("loadCachedScan begin");
        const bool hasSnapshot = restoreSnapshot(task, job);
        restoreCache(task, job, hasSnapshot);
    });
}

// The three below run on the restore's thread and touch this object only by steps on the main thread, each of
// which tests again that no scan has come meanwhile.
bool ScanFlow::restoreSnapshot(const TaskHandle& task, const RestoreJob& job) {
    const auto snapshot = job.store.loadHomeSnapshot();
    if (!snapshot) return false;
    job.mark("loadCachedScan homeSnapshot decoded");
    if (!isCurrent(*snapshot)) return false;
    task.onMain([this, snapshot = *snapshot] {
        if (!mayRestore()) return;
        catalog_.applyHomeSnapshot(snapshot);
        cacheLoadedAt_ = snapshot.scannedAt;
        setState(MailScanState::finished());
        Q_EMIT homeSnapshotApplied();
        context_.performanceLog.mark(
            fmt::format("[Perf] loadHomeSnapshot applied messages={} local={} accounts={}",
                        snapshot.summary.scannedMessages, snapshot.localMessageCount,
                        snapshot.localAccountYearStats.size()));
    });
    return true;
}

void ScanFlow::restoreCache(const TaskHandle& task, const RestoreJob& job, bool hasSnapshot) {
    auto restored = std::make_shared<RestoredScan>();
    try {
        auto cache = job.store.load();
        if (!cache) {
            job.mark("loadCachedScan cache empty");
            task.onMain([this] {
                if (mayRestore()) setState(MailScanState::idle());
            });
            return;
        }
        job.mark(fmt::format("loadCachedScan cache decoded messages={}", cache->messages.size()));
        std::size_t counted = 0;
        *restored = makeRestored(std::move(*cache), job.accounts, counted);
        job.archivedStatus->prepareFor(restored->set->messages);
        if (restored->known) job.mark(fmt::format("loadCachedScan recompute stats msgs={}", counted));
    } catch (const std::exception& error) {
        task.onMain([this, message = fmt::format("读取上次扫描结果失败：{}", error.what())] {
            if (mayRestore()) fail(message);
        });
        return;
    }
    if (!hasSnapshot && restored->localYearStats && restored->localAccountYearStats) {
        job.store.saveHomeSnapshot(restored->scannedAt, restored->summary, *restored->localYearStats,
                                   *restored->localAccountYearStats);
    }
    task.onMain([this, restored, loadIndex = job.loadArchiveIndex] { applyRestored(*restored, loadIndex); });
    const double total = secondsSince(job.start);
    if (total < totalLogThreshold) return;
    job.context.performanceLog.mark(fmt::format("[Perf] loadCachedScan.total {:.3f}s messages={}", total,
                                                restored->set->messages->size()));
}

void ScanFlow::applyRestored(RestoredScan& restored, bool loadArchiveIndex) {
    if (!mayRestore()) return;
    const auto start = Clock::now();
    const std::size_t localStats = restored.localYearStats ? restored.localYearStats->size() : 0;
    const std::size_t accountStats =
        restored.localAccountYearStats ? restored.localAccountYearStats->size() : 0;
    catalog_.restore(restored.set, restored.summary, std::move(restored.known));
    cacheLoadedAt_ = restored.scannedAt;
    setState(MailScanState::finished());
    Q_EMIT cachedScanRestored(loadArchiveIndex);
    const double seconds = secondsSince(start);
    if (seconds < applyLogThreshold) return;
    context_.performanceLog.mark(
        fmt::format("[Perf] loadCachedScan.apply {:.3f}s messages={} localStats={} accountStats={}", seconds,
                    restored.set->messages->size(), localStats, accountStats));
}

} // namespace corvane
