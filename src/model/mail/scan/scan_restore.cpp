#include "model/mail/scan/scan_restore.h"

#include <exception>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "model/mail/store/mail_folder.h"
#include "platform/stop_watch.h"
#include "records/json/json_form.h"

namespace corvane {

namespace {

constexpr double totalLogThreshold = 0.05; // seconds

void mark(const RestoreJob& job, const std::string& text) {
    job.startupLog.mark(fmt::format("{} elapsed={:.3f}s", text, job.watch.seconds()));
}

// A snapshot of another scan than the cached one shows what isn't there any more. Local statistics hold only
// messages with attachments; a snapshot that says otherwise was made under other rules.
bool isCurrent(const MailHomeSnapshot& snapshot, const std::optional<Date>& cachedScan) {
    if (snapshot.scannedAt != cachedScan) return false;
    for (const AccountYearStatGroup& group : snapshot.localAccountYearStats) {
        for (const YearStat& stat : group.years) {
            if (stat.messageCount != stat.withAttachmentCount) return false;
        }
    }
    return true;
}

void sumLocal(AvailabilityResult& result) {
    for (const YearStat& stat : result.localYearStats) {
        result.localCount += stat.messageCount;
        result.localBytes += stat.messageBytes;
    }
}

AvailabilityResult knownAvailability(const MessageList& messages, const std::vector<SharedText>& ids,
                                     const RestoreJob& job, std::size_t& counted) {
    const AvailabilityInputs& inputs = job.inputs;
    const std::string version = mailVersionIn(job.mailRootPath);
    AvailabilityResult result;
    const SharedTextSet told(ids.begin(), ids.end()); // by a file: it may name what isn't in the list
    auto available = std::make_shared<SharedTextSet>();
    available->reserve(told.size());
    MessageRefs local;
    for (const MailMessageRecord& message : messages) {
        if (!told.contains(message.id) || !isOfMailVersion(message, version)) continue;
        available->insert(message.id);
        if (!message.attachments.empty()) local.push_back(&message);
    }
    counted = local.size();
    result.localYearStats = computeYearStats(local);
    result.accountYearStats = computeAccountYearStats(local, inputs.accounts);
    result.yearByID = std::make_shared<const YearByID>(computeMessageYears(messages));
    result.locallyAvailableIDs = std::move(available);
    result.archivedBaseIDs = inputs.archivedBaseIDs;
    // What stands against them is found by the run that follows; until then none of them is proven.
    setRecorded(result, messages, *inputs.archivedBaseIDs);
    result.archivedMessageIDs = archivedIDs(result);
    sumLocal(result);
    return result;
}

// Local statistics by year and by account, of the messages or as the cache says; absent where neither knows.
struct LocalStats {
    std::optional<std::vector<YearStat>> byYear;
    std::optional<std::vector<AccountYearStatGroup>> byAccount;
};

// Names in the cache that aren't in its list aren't written again, so a cache with such is another one.
std::optional<ScanCacheWrite> contentOf(const RestoredScan& restored, MailScanCache& cache, FileStamp stamp) {
    if (!restored.known || !cache.localYearStats || !cache.localAccountYearStats) return std::nullopt;
    const auto& available = restored.known->locallyAvailableIDs;
    if (available->size() != cache.locallyAvailableMessageIDs->size()) return std::nullopt;
    return ScanCacheWrite{{restored.set->messages, restored.summary, available,
                           *std::move(cache.localYearStats), *std::move(cache.localAccountYearStats),
                           restored.scannedAt},
                          stamp};
}

// Throws JsonError for a repeated id: such a cache is damaged.
RestoredScan makeRestored(const RestoreJob& job, MailScanCache cache, FileStamp stamp, LocalStats& stats) {
    RestoredScan restored;
    restored.summary = std::move(cache.summary);
    restored.scannedAt = cache.scannedAt;
    try {
        restored.set = MessageSet::make(std::make_shared<const MessageList>(std::move(cache.messages)), true);
    } catch (const std::logic_error& error) {
        throw JsonError(error.what());
    }
    std::size_t counted = 0;
    if (cache.locallyAvailableMessageIDs) {
        restored.known =
            knownAvailability(*restored.set->messages, *cache.locallyAvailableMessageIDs, job, counted);
        stats = {restored.known->localYearStats, restored.known->accountYearStats};
        restored.cached = contentOf(restored, cache, stamp);
    } else {
        stats = {std::move(cache.localYearStats), std::move(cache.localAccountYearStats)};
    }
    if (stats.byYear) restored.localStatCount = stats.byYear->size();
    if (stats.byAccount) restored.accountStatCount = stats.byAccount->size();
    if (restored.known) mark(job, fmt::format("loadCachedScan recompute stats msgs={}", counted));
    return restored;
}

bool reportSnapshot(const RestoreJob& job, const ReportingTask<MailHomeSnapshot>& task) {
    auto snapshot = job.store.loadHomeSnapshot();
    if (!snapshot) return false;
    mark(job, "loadCachedScan homeSnapshot decoded");
    if (!isCurrent(*snapshot, job.store.cachedScanTime())) return false;
    task.report(std::move(*snapshot));
    return true;
}

RestoreOutcome restoreCache(const RestoreJob& job, LocalStats& stats) {
    try {
        const FileStamp stamp = job.store.stamp();
        auto cache = job.store.load();
        if (!cache) {
            mark(job, "loadCachedScan cache empty");
            return NoCachedScan();
        }
        mark(job, fmt::format("loadCachedScan cache decoded messages={}", cache->messages.size()));
        return makeRestored(job, std::move(*cache), stamp, stats);
    } catch (const std::exception& error) {
        return UnreadableCache{fmt::format("读取上次扫描结果失败：{}", error.what())};
    }
}

} // namespace

RestoreOutcome restoreScan(const RestoreJob& job, const ReportingTask<MailHomeSnapshot>& task) {
    job.startupLog.mark("loadCachedScan begin");
    const bool hasSnapshot = reportSnapshot(job, task);
    LocalStats stats;
    RestoreOutcome outcome = restoreCache(job, stats);
    const auto* restored = std::get_if<RestoredScan>(&outcome);
    if (restored == nullptr) return outcome;
    if (!hasSnapshot && stats.byYear && stats.byAccount)
        job.store.saveHomeSnapshot(restored->scannedAt, restored->summary, *stats.byYear, *stats.byAccount);
    const double total = job.watch.seconds();
    if (total >= totalLogThreshold) {
        job.performanceLog.mark(fmt::format("[Perf] loadCachedScan.total {:.3f}s messages={}", total,
                                            restored->set->messages->size()));
    }
    return outcome;
}

} // namespace corvane
