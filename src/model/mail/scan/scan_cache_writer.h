// Keeps the scan cache up to date. A failed write is ignored: a later start is slower, no more. What the file
// holds already isn't written again, since each start would.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "model/model_context.h"
#include "model/tasks/latest_state_writer.h"
#include "records/archived/file_readings.h"
#include "records/mail_message_record.h"
#include "records/statistics_records.h"
#include "records/stores/scan_cache_store.h"

namespace corvane {

struct ScanCacheState {
    SharedMessageList messages;
    MailScanSummary summary;
    std::shared_ptr<const SharedTextSet> locallyAvailableIDs;
    std::vector<YearStat> localYearStats;
    std::vector<AccountYearStatGroup> localAccountYearStats;
    std::optional<Date> scannedAt; // absent: now

    // Lists and sets by identity: what is shared is never compared element by element.
    friend bool operator==(const ScanCacheState&, const ScanCacheState&) = default;
};

struct ScanCacheWrite {
    ScanCacheState state;
    // Of the scan cache that holds just this, as it was read; `unknownStamp` where none is known.
    FileStamp held = unknownStamp;
};

// The home snapshot, which is small and may be of another state, is written in any case.
struct WriteScanCache {
    MailScanCacheStore store;

    void operator()(const ScanCacheWrite& write) const;
};

class ScanCacheWriter : public LatestStateWriter<ScanCacheWrite, WriteScanCache> {
  public:
    explicit ScanCacheWriter(ModelContext& context);
};

} // namespace corvane
