#include "model/archiving/kept_readings.h"

#include <utility>

#include "records/stores/proof_store.h"

namespace corvane {

struct KeptReadings::Job {
    CorvaneAppSupport support;
    SharedProofFacts facts;
    std::vector<Addition> additions;
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
    load();
    if (!task_.isRunning()) startNext();
}

SharedProofFacts KeptReadings::extended(const Job& job, const TaskHandle&) {
    ProofStore store(job.support);
    auto facts = std::make_shared<ProofFacts>(*job.facts);
    for (const Addition& addition : job.additions) {
        // What can't be kept is known until the end, and read again after it.
        if (addition.store == Store::needsThem) store.save(*addition.readings);
        facts->add(*addition.readings);
    }
    return facts;
}

void KeptReadings::startNext() {
    if (waiting_.empty()) return;
    task_.start(TaskPriority::utility, Job{context_.support, facts_, std::exchange(waiting_, {})}, &extended,
                [this](SharedProofFacts facts) { publish(std::move(facts)); });
}

void KeptReadings::publish(SharedProofFacts facts) {
    const bool isChanged = !facts->isEmpty() || !facts_->isEmpty();
    context_.tasks.discard(std::exchange(facts_, std::move(facts)));
    if (isChanged) Q_EMIT factsChanged();
    startNext();
}

} // namespace corvane
