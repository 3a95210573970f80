// The restore of the last scan from its two files: the small one for the home screen, then the large one.
#include <fmt/format.h>

#include "model/scan_flow.h"
#include "records/console_log.h"
#include "records/scan_cache_store.h"

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double applyLogThreshold = 0.02; // seconds
constexpr double totalLogThreshold = 0.05; // seconds

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// Local statistics hold only messages with attachments; a snapshot that says otherwise was made under other rules.
bool isCurrent(const MailHomeSnapshot& snapshot) {
    for (const AccountYearStatGroup& group : snapshot.localAccountYearStats) {
        for (const YearStat& stat : group.years) {
            if (stat.messageCount != stat.withAttachmentCount) return false;
        }
    }
    return true;
}

struct RestoredScan {
    SharedMessageSet set;
    MailScanSummary summary;
    Date scannedAt{};
    std::optional<AvailabilityResult> known;
    // From the cache where it has them but not the available ids.
    std::optional<std::vector<YearStat>> localYearStats;
    std::optional<std::vector<AccountYearStatGroup>> localAccountYearStats;
};

void sumLocal(AvailabilityResult& result) {
    for (const YearStat& stat : result.localYearStats) {
        result.localCount += stat.messageCount;
        result.localBytes += stat.messageBytes;
    }
}

AvailabilityResult knownAvailability(const MessageList& messages, std::vector<SharedText> ids,
                                     const std::vector<MailAccount>& accounts, std::size_t& counted) {
    AvailabilityResult result;
    auto available = std::make_shared<SharedTextSet>();
    available->reserve(ids.size());
    for (SharedText& id : ids) available->insert(std::move(id));
    MessageRefs local;
    for (const MailMessageRecord& message : messages) {
        if (!message.attachments.empty() && available->contains(message.id)) local.push_back(&message);
    }
    counted = local.size();
    result.localYearStats = computeYearStats(local);
    result.accountYearStats = computeAccountYearStats(local, accounts);
    result.yearByID = std::make_shared<const YearByID>(computeMessageYears(messages));
    result.locallyAvailableIDs = std::move(available);
    sumLocal(result);
    return result;
}

// Throws JsonError for a repeated id: such a cache is damaged.
RestoredScan makeRestored(MailScanCache cache, const std::vector<MailAccount>& accounts, std::size_t& counted) {
    RestoredScan restored;
    restored.summary = std::move(cache.summary);
    restored.scannedAt = cache.scannedAt;
    try {
        restored.set = MessageSet::make(std::make_shared<const MessageList>(std::move(cache.messages)), true);
    } catch (const std::logic_error& error) {
        throw JsonError(error.what());
    }
    if (cache.locallyAvailableMessageIDs) {
        restored.known = knownAvailability(*restored.set->messages, std::move(*cache.locallyAvailableMessageIDs),
                                           accounts, counted);
        restored.localYearStats = restored.known->localYearStats;
        restored.localAccountYearStats = restored.known->accountYearStats;
    } else {
        restored.localYearStats = std::move(cache.localYearStats);
        restored.localAccountYearStats = std::move(cache.localAccountYearStats);
    }
    return restored;
}

} // namespace

bool ScanFlow::mayRestore() const { return catalog_.messages()->empty() && !state_.isScanning(); }

void ScanFlow::loadCachedScanIfNeeded(bool loadArchiveIndex) {
    if (!mayRestore()) return;
    const auto job = [this, loadArchiveIndex, store = MailScanCacheStore(context_.support), &context = context_,
                      accounts = accounts_.availableAccounts()](const TaskHandle& task) {
        const auto start = Clock::now();
        const auto mark = [&](const std::string& text) {
            context.startupLog.mark(fmt::format("{} elapsed={:.3f}s", text, secondsSince(start)));
        };
        context.startupLog.mark("loadCachedScan begin");
        auto snapshot = store.loadHomeSnapshot();
        if (snapshot) mark("loadCachedScan homeSnapshot decoded");
        const bool hasSnapshot = snapshot && isCurrent(*snapshot);
        if (hasSnapshot) {
            task.onMain([this, snapshot = std::make_shared<const MailHomeSnapshot>(std::move(*snapshot))] {
                if (!mayRestore()) return;
                catalog_.applyHomeSnapshot(*snapshot);
                cacheLoadedAt_ = snapshot->scannedAt;
                setState(MailScanState::finished());
                Q_EMIT homeSnapshotApplied();
                context_.performanceLog.mark(
                    fmt::format("[Perf] loadHomeSnapshot applied messages={} local={} accounts={}",
                                snapshot->summary.scannedMessages, snapshot->localMessageCount,
                                snapshot->localAccountYearStats.size()));
            });
        }
        auto restored = std::make_shared<RestoredScan>();
        try {
            auto cache = store.load();
            if (!cache) {
                mark("loadCachedScan cache empty");
                task.onMain([this] { setState(MailScanState::idle()); });
                return;
            }
            mark(fmt::format("loadCachedScan cache decoded messages={}", cache->messages.size()));
            std::size_t counted = 0;
            *restored = makeRestored(std::move(*cache), accounts, counted);
            if (restored->known) mark(fmt::format("loadCachedScan recompute stats msgs={}", counted));
        } catch (const std::exception& error) {
            task.onMain([this, message = fmt::format("读取上次扫描结果失败：{}", error.what())] { fail(message); });
            return;
        }
        if (!hasSnapshot && restored->localYearStats && restored->localAccountYearStats) {
            store.saveHomeSnapshot(restored->scannedAt, restored->summary, *restored->localYearStats,
                                   *restored->localAccountYearStats);
        }
        task.onMain([this, restored, loadArchiveIndex] {
            if (!mayRestore()) return;
            const auto applyStart = Clock::now();
            const std::size_t localStats = restored->localYearStats ? restored->localYearStats->size() : 0;
            const std::size_t accountStats =
                restored->localAccountYearStats ? restored->localAccountYearStats->size() : 0;
            catalog_.restore(restored->set, restored->summary, std::move(restored->known));
            cacheLoadedAt_ = restored->scannedAt;
            setState(MailScanState::finished());
            Q_EMIT cachedScanRestored(loadArchiveIndex);
            const double seconds = secondsSince(applyStart);
            if (seconds < applyLogThreshold) return;
            context_.performanceLog.mark(
                fmt::format("[Perf] loadCachedScan.apply {:.3f}s messages={} localStats={} accountStats={}", seconds,
                            restored->set->messages->size(), localStats, accountStats));
        });
        const double total = secondsSince(start);
        if (total >= totalLogThreshold) {
            context.performanceLog.mark(fmt::format("[Perf] loadCachedScan.total {:.3f}s messages={}", total,
                                                    restored->set->messages->size()));
        }
    };
    restoreTask_.start(TaskPriority::userInitiated, job);
}

} // namespace corvane
