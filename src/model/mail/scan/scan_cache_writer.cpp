#include "model/mail/scan/scan_cache_writer.h"

#include <tuple>

#include "listing/message_set.h"
#include "records/stores/scan_cache_store.h"

namespace corvane {

namespace {

// In the order of the messages, so that a reader can share the characters.
std::vector<SharedText> orderedIDs(const ScanCacheState& state) {
    std::vector<SharedText> ids;
    ids.reserve(state.locallyAvailableIDs->size());
    const bool areAllLocal = areAllAvailable(*state.messages, *state.locallyAvailableIDs);
    for (const MailMessageRecord& message : *state.messages) {
        if (areAllLocal || state.locallyAvailableIDs->contains(message.id)) ids.push_back(message.id);
    }
    return ids;
}

} // namespace

void WriteScanCache::operator()(const ScanCacheWrite& write) const {
    const ScanCacheState& state = write.state;
    if (state.scannedAt && write.held != unknownStamp && write.held == store.stamp()) {
        store.saveHomeSnapshot(*state.scannedAt, state.summary, state.localYearStats,
                               state.localAccountYearStats);
        return;
    }
    const std::vector<SharedText> ids = orderedIDs(state);
    std::ignore = store.save(*state.messages, state.summary, &ids, &state.localYearStats,
                             &state.localAccountYearStats, state.scannedAt);
}

ScanCacheWriter::ScanCacheWriter(ModelContext& context)
  : LatestStateWriter(context.tasks, {MailScanCacheStore(context.support)}) {}

} // namespace corvane
