#include "model/library/presence/presence_flow.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace corvane {

namespace {

struct RelateJob {
    SharedEntryList entries;
    SharedPresence earlier;
};

} // namespace

PresenceFlow::PresenceFlow(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , relateTask_(context.tasks)
  , archivedOriginalPresenceTask_(context.tasks) {}

void PresenceFlow::setEntries(SharedEntryList entries) {
    if (entries == entries_) return;
    entries_ = std::move(entries);
    const bool isKnown = presence_->state() != OriginalPresence::State::unchecked;
    if (isKnown || archivedOriginalPresenceTask_.isRunning() || relateTask_.isRunning())
        return relate(presence_);
    // As long as nobody asks for it there is nothing to keep, and no signature to compare.
    archivedOriginalPresenceSignature_.clear();
    auto unchecked = std::make_shared<OriginalPresence>();
    unchecked->entries = entries_;
    publish(std::move(unchecked), false);
}

void PresenceFlow::relate(const SharedPresence& earlier) {
    relateTask_.start(
        TaskPriority::utility, RelateJob{entries_, earlier},
        [](RelateJob job, const TaskHandle&) {
            return presenceOfEntries(std::move(job.entries), job.earlier);
        },
        [this](SharedPresence presence) { entriesRelated(std::move(presence)); });
}

void PresenceFlow::entriesRelated(SharedPresence presence) {
    if (presence->signature != presence_->signature) markArchivedOriginalPresenceStale();
    publish(std::move(presence), isChecking_);
    const Wanted wanted = std::exchange(wanted_, Wanted::nothing);
    if (wanted != Wanted::nothing) refreshArchivedOriginalPresenceIfNeeded(wanted == Wanted::asked);
}

void PresenceFlow::markArchivedOriginalPresenceStale() {
    archivedOriginalPresenceTask_.cancel();
    archivedOriginalPresenceSignature_.clear();
    auto stale = std::make_shared<OriginalPresence>();
    stale->entries = presence_->entries;
    stale->signature = presence_->signature;
    publish(std::move(stale), false);
}

void PresenceFlow::refreshArchivedOriginalPresenceIfNeeded(bool force) {
    if (entries_->empty()) return;
    if (presence_->entries != entries_ || presence_->signature.empty()) {
        wanted_ = std::max(wanted_, force ? Wanted::asked : Wanted::cached);
        if (!relateTask_.isRunning()) relate(presence_);
        return;
    }
    if (!force && archivedOriginalPresenceSignature_ == presence_->signature) return;
    archivedOriginalPresenceSignature_ = presence_->signature;
    archivedOriginalPresenceTask_.cancel();
    questionFailure_.reset();
    archivedOriginalPresenceTask_.startReporting<SharedPresence>(
        TaskPriority::utility,
        PresenceJob{context_.platform, context_.support, context_.startupLog, context_.mailRootPath,
                    presence_, force},
        &runPresenceJob, [this](const SharedPresence& presence) { adopt(presence, isChecking_); },
        [this](const PresenceEnd& ended) { end(ended); });
    publish(presence_, force);
}

// Of entries that have been replaced meanwhile it may still be true.
void PresenceFlow::adopt(const SharedPresence& presence, bool isChecking) {
    const bool isCurrent = presence->entries == entries_;
    publish(isCurrent ? presence : presence_, isChecking);
    if (!isCurrent) relate(presence);
}

void PresenceFlow::end(const PresenceEnd& end) {
    // Without an answer nothing was found out: the next wish is not held for fulfilled.
    if (end.failure) archivedOriginalPresenceSignature_.clear();
    questionFailure_ = end.failure;
    adopt(end.presence, false);
}

void PresenceFlow::publish(SharedPresence presence, bool isChecking) {
    const bool isSame = presence == presence_ && isChecking == isChecking_;
    isChecking_ = isChecking;
    context_.tasks.discard(std::exchange(presence_, std::move(presence)));
    if (!isSame) Q_EMIT presenceChanged();
}

} // namespace corvane
