#include "model/archiving/proof/kept_readings.h"

#include <utility>

#include "records/stores/proof_store.h"
#include "records/timestamps.h"

namespace corvane {

struct KeptReadings::Job {
    CorvaneAppSupport support;
    SharedProofFacts facts;
    std::vector<Addition> additions;
    ReadingPaths forgotten;
    std::optional<ReadingOwners> owners;
};

KeptReadings::KeptReadings(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , task_(context.tasks) {}

void KeptReadings::load() {
    if (isLoadStarted_) return;
    isLoadStarted_ = true;
    task_.start(
        TaskPriority::userInitiated, context_.support,
        [](const CorvaneAppSupport& support, const TaskHandle&) -> SharedProofFacts {
            return ProofStore(support).load();
        },
        [this](SharedProofFacts facts) { publish(std::move(facts)); });
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

void KeptReadings::prune(ReadingOwners owners) {
    if (std::exchange(isPruned_, true)) return;
    owners_ = std::move(owners);
    startIfIdle();
}

void KeptReadings::startIfIdle() {
    load();
    if (!task_.isRunning()) startNext();
}

// The same facts where nothing has changed.
SharedProofFacts KeptReadings::changedFacts(const Job& job, const TaskHandle&) {
    ProofStore store(job.support);
    ReadingPaths gone = job.forgotten;
    if (job.owners)
        gone.append(staleReadings(job.support.files(), *job.facts, *job.owners, currentTimestamp()));
    if (job.additions.empty() && gone.isEmpty()) return job.facts;
    auto facts = std::make_shared<ProofFacts>(*job.facts);
    store.remove(gone);
    facts->remove(gone);
    for (const Addition& addition : job.additions) {
        // What can't be kept is known until the end, and read again after it.
        if (addition.store == Store::needsThem) store.save(*addition.readings);
        facts->add(*addition.readings);
    }
    return facts;
}

void KeptReadings::startNext() {
    if (waiting_.empty() && forgotten_.isEmpty() && !owners_) return;
    task_.start(TaskPriority::utility,
                Job{context_.support, facts_, std::exchange(waiting_, {}), std::exchange(forgotten_, {}),
                    std::exchange(owners_, std::nullopt)},
                &changedFacts, [this](SharedProofFacts facts) { publish(std::move(facts)); });
}

void KeptReadings::publish(SharedProofFacts facts) {
    const bool isChanged = facts != facts_ && (!facts->isEmpty() || !facts_->isEmpty());
    context_.tasks.discard(std::exchange(facts_, std::move(facts)));
    if (isChanged) Q_EMIT factsChanged();
    startNext();
}

} // namespace corvane
