// Writes the scan cache in the background, one state at a time: a newer state that comes while one is being
// written waits for it and replaces any other that waits, so an older state never ends up on the disk. Main
// thread.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "model/model_context.h"
#include "records/scan_cache_store.h"

namespace corvane {

struct ScanCacheState {
    SharedMessageList messages;
    MailScanSummary summary;
    std::shared_ptr<const SharedTextSet> locallyAvailableIDs;
    std::vector<YearStat> localYearStats;
    std::vector<AccountYearStatGroup> localAccountYearStats;
};

class ScanCacheWriter {
  public:
    explicit ScanCacheWriter(ModelContext& context);

    // A failed write is ignored: a later start is slower, no more.
    void save(ScanCacheState state);

  private:
    void startNext();

    MailScanCacheStore store_;
    std::optional<ScanCacheState> waiting_;
    bool isWriting_ = false;
    TaskSlot task_;
};

} // namespace corvane
