#include "model/archiving/proof/kept_readings.h"

#include <utility>

#include "locations/places/place_looks.h"
#include "model/archiving/proof/readings_by_name.h"
#include "records/stores/proof_store.h"
#include "records/timestamps.h"

namespace corvane {

struct KeptReadings::Job {
    const platform::Platform& platform;
    CorvaneAppSupport support;
    Kept known;
    std::vector<Addition> additions;
    ReadingPaths forgotten;
    std::optional<SeenFiles> seen;
    std::optional<ReadingOwners> owners;
};

KeptReadings::KeptReadings(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , task_(context.tasks) {}

void KeptReadings::load() {
    isLoadWanted_ = true;
    startIfIdle();
}

void KeptReadings::add(SharedReadings readings, Store store) {
    if (readings->isEmpty()) return;
    waiting_.push_back({std::move(readings), store});
    startIfIdle();
}

void KeptReadings::forget(ReadingPaths paths) {
    if (paths.isEmpty()) return;
    forgotten_.append(std::move(paths));
    startIfIdle();
}

void KeptReadings::compareWith(SeenFiles seen) {
    seen_ = std::move(seen);
    startIfIdle();
}

void KeptReadings::prune(ReadingOwners owners) {
    if (std::exchange(isPruned_, true)) return;
    owners_ = std::move(owners);
    startIfIdle();
}

void KeptReadings::startIfIdle() {
    if (!task_.isRunning()) startNext();
}

KeptReadings::Kept KeptReadings::changed(const Job& job, const TaskHandle& task) {
    ProofStore store(job.support);
    Kept kept = job.known;
    if (const FileStamp stamp = store.stamp(); kept.stamp != stamp) {
        const auto facts = store.load();
        facts->add(*kept.unsaved);
        kept.facts = facts;
        kept.stamp = stamp;
    }
    ReadingPaths gone = job.forgotten;
    if (job.owners)
        gone.append(staleReadings(job.support.files(), *kept.facts, *job.owners, currentTimestamp()));
    std::vector<Addition> additions = job.additions;
    if (job.seen) {
        TakenBack back = readingsTakenBackBy(*job.seen, *kept.facts);
        gone.append(std::move(back.outdated));
        if (!back.lost.isEmpty())
            additions.insert(additions.begin(), {std::make_shared<const ReadingBatch>(std::move(back.lost))});
    }
    if (additions.empty() && gone.isEmpty()) return kept;
    auto facts = std::make_shared<ProofFacts>(*kept.facts);
    store.remove(gone);
    facts->remove(gone);
    ReadingBatch unsaved = *kept.unsaved;
    PlaceLooks looks(job.platform, job.support.files(), task.stopToken());
    for (const Addition& addition : additions) {
        if (addition.store == Store::hasThem) {
            facts->add(*addition.readings);
            continue;
        }
        ReadingBatch named = underEveryName(*addition.readings, *facts, looks);
        facts->add(named);
        // What can't be kept is known until the end, and read again after it.
        if (!store.save(named)) unsaved.append(std::move(named));
    }
    return {std::move(facts), store.stamp(), std::make_shared<const ReadingBatch>(std::move(unsaved))};
}

void KeptReadings::startNext() {
    if (!isLoadWanted_ && waiting_.empty() && forgotten_.isEmpty() && !seen_ && !owners_) return;
    isLoadWanted_ = false;
    task_.start(kept_.stamp ? TaskPriority::utility : TaskPriority::userInitiated,
                Job{context_.platform, context_.support, kept_, std::exchange(waiting_, {}),
                    std::exchange(forgotten_, {}), std::exchange(seen_, std::nullopt),
                    std::exchange(owners_, std::nullopt)},
                &changed, [this](Kept kept) { publish(std::move(kept)); });
}

void KeptReadings::publish(Kept kept) {
    const bool isChanged = kept.facts != kept_.facts && (!kept.facts->isEmpty() || !kept_.facts->isEmpty());
    context_.tasks.discard(std::exchange(kept_, std::move(kept)).facts);
    if (isChanged) Q_EMIT factsChanged();
    startNext();
}

} // namespace corvane
