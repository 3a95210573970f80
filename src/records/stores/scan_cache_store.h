// "last-scan-cache.json" and "home-scan-snapshot.json" in the support folder. Large work: background only.
#pragma once

#include <optional>
#include <system_error>
#include <vector>

#include "records/archived/file_readings.h"
#include "records/stores/app_support.h"
#include "records/stores/scan_cache_file.h"

namespace corvane {

class MailScanCacheStore {
  public:
    explicit MailScanCacheStore(CorvaneAppSupport support)
      : support_(std::move(support)) {}

    // Writes the scan cache and, when both lists of statistics are given, the home snapshot. Without
    // available ids every message is looked for on the disk. Returns the error when the scan cache can't be
    // written, or a falsy code; a failure of the snapshot isn't reported.
    std::error_code save(const std::vector<MailMessageRecord>& messages, const MailScanSummary& summary,
                         const std::vector<SharedText>* locallyAvailableMessageIDs,
                         const std::vector<YearStat>* localYearStats,
                         const std::vector<AccountYearStatGroup>* localAccountYearStats,
                         const std::optional<Date>& scannedAt = std::nullopt) const;

    // Writes only the snapshot of the given moment; a failure isn't reported.
    void saveHomeSnapshot(Date scannedAt, const MailScanSummary& summary,
                          const std::vector<YearStat>& localYearStats,
                          const std::vector<AccountYearStatGroup>& localAccountYearStats) const;

    // When the cached scan was written, by the first bytes of its file; absent when there is none, or they
    // can't be read.
    [[nodiscard]] std::optional<Date> cachedScanTime() const;

    // Of the scan cache; `unknownStamp` when there is none.
    [[nodiscard]] FileStamp stamp() const;

    // Absent when there is no file. Throws std::system_error or JsonError.
    [[nodiscard]] std::optional<MailScanCache> load() const;

    // Absent when there is no usable file.
    [[nodiscard]] std::optional<MailHomeSnapshot> loadHomeSnapshot() const;

  private:
    CorvaneAppSupport support_;
};

} // namespace corvane
