#include "model/scan_cache_writer.h"

#include <system_error>

namespace corvane {

namespace {

// In the order of the messages, so that a reader can share the characters.
std::vector<SharedText> orderedIDs(const ScanCacheState& state) {
    std::vector<SharedText> ids;
    ids.reserve(state.locallyAvailableIDs->size());
    for (const MailMessageRecord& message : *state.messages) {
        if (state.locallyAvailableIDs->contains(message.id)) ids.push_back(message.id);
    }
    return ids;
}

void write(const MailScanCacheStore& store, const ScanCacheState& state) {
    const std::vector<SharedText> ids = orderedIDs(state);
    try {
        store.save(*state.messages, state.summary, &ids, &state.localYearStats, &state.localAccountYearStats);
    } catch (const std::system_error&) { // told in the header
    }
}

} // namespace

ScanCacheWriter::ScanCacheWriter(ModelContext& context)
  : store_(context.support)
  , task_(context.tasks) {}

void ScanCacheWriter::save(ScanCacheState state) {
    waiting_ = std::move(state);
    if (!isWriting_) startNext();
}

void ScanCacheWriter::startNext() {
    isWriting_ = waiting_.has_value();
    if (!isWriting_) return;
    auto state = std::make_shared<const ScanCacheState>(std::move(*waiting_));
    waiting_.reset();
    task_.start(TaskPriority::utility, [this, store = store_, state](const TaskHandle& task) {
        write(store, *state);
        task.onMain([this] { startNext(); });
    });
}

} // namespace corvane
