#include "records/stores/scan_cache_store.h"

#include <string_view>
#include <tuple>

#include "platform/files/file_look.h"
#include "records/json/record_file.h"
#include "records/stores/scan_cache_forms.h"

namespace corvane {

namespace {

constexpr std::string_view cacheFileName = "last-scan-cache.json";
constexpr std::string_view snapshotFileName = "home-scan-snapshot.json";

std::vector<SharedText> availableIDs(const std::vector<MailMessageRecord>& messages) {
    std::vector<SharedText> ids;
    for (const MailMessageRecord& message : messages) {
        if (message.isLocallyAvailable()) ids.push_back(message.id);
    }
    return ids;
}

} // namespace

std::error_code MailScanCacheStore::save(const std::vector<MailMessageRecord>& messages,
                                         const MailScanSummary& summary,
                                         const std::vector<SharedText>* locallyAvailableMessageIDs,
                                         const std::vector<YearStat>* localYearStats,
                                         const std::vector<AccountYearStatGroup>* localAccountYearStats,
                                         const std::optional<Date>& scannedAt) const {
    std::vector<SharedText> found;
    if (locallyAvailableMessageIDs == nullptr) {
        found = availableIDs(messages);
        locallyAvailableMessageIDs = &found;
    }
    const ScanCacheContent content{scannedAt.value_or(currentTimestamp()),
                                   &summary,
                                   &messages,
                                   locallyAvailableMessageIDs,
                                   localYearStats,
                                   localAccountYearStats};
    const auto error = support_.writeFile(
        cacheFileName, [&](const platform::ByteSink& sink) { encodeScanCache(content, sink); });
    if (!error && localYearStats != nullptr && localAccountYearStats != nullptr) {
        saveHomeSnapshot(content.scannedAt, summary, *localYearStats, *localAccountYearStats);
    }
    return error;
}

void MailScanCacheStore::saveHomeSnapshot(
    Date scannedAt, const MailScanSummary& summary, const std::vector<YearStat>& localYearStats,
    const std::vector<AccountYearStatGroup>& localAccountYearStats) const {
    MailHomeSnapshot snapshot{scannedAt, summary, 0, 0, localYearStats, localAccountYearStats};
    for (const YearStat& stat : localYearStats) {
        snapshot.localMessageCount += stat.messageCount;
        snapshot.localMessageBytes += stat.messageBytes;
    }
    std::ignore = support_.writeFile(snapshotFileName, encodeJson(snapshot));
}

std::optional<Date> MailScanCacheStore::cachedScanTime() const {
    return readScanTime(support_.filePath(cacheFileName));
}

FileStamp MailScanCacheStore::stamp() const {
    return stampOf(platform::lookAtFile(support_.filePath(cacheFileName)));
}

std::optional<MailScanCache> MailScanCacheStore::load() const {
    return readScanCacheFile(support_.filePath(cacheFileName));
}

std::optional<MailHomeSnapshot> MailScanCacheStore::loadHomeSnapshot() const {
    return readRecordFileIfUsable<MailHomeSnapshot>(support_.filePath(snapshotFileName));
}

} // namespace corvane
