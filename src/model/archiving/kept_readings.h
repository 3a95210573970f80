// What was read for proofs, in memory and in its store. Main thread; reading, writing and copying are
// background work, one at a time, so nothing that was added is lost behind another addition.
#pragma once

#include <memory>
#include <vector>

#include <QObject>

#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/proof_facts.h"

namespace corvane {

using SharedReadings = std::shared_ptr<const ReadingBatch>;

class KeptReadings : public QObject {
    Q_OBJECT

  public:
    // Begins to load.
    explicit KeptReadings(ModelContext& context, QObject* parent = nullptr);

    // Never null; empty until they are loaded.
    [[nodiscard]] const SharedProofFacts& facts() const { return facts_; }

    enum class Store { hasThem, needsThem };

    // Adds readings in the background; `factsChanged` follows unless there are none. Never null.
    void add(SharedReadings readings, Store store);

  Q_SIGNALS:
    void factsChanged();

  private:
    struct Addition {
        SharedReadings readings;
        Store store = Store::needsThem;
    };

    struct Job;

    static SharedProofFacts extended(const Job& job, const TaskHandle& task);
    void startNext();
    void publish(SharedProofFacts facts);

    ModelContext& context_;
    SharedProofFacts facts_ = std::make_shared<const ProofFacts>();
    std::vector<Addition> waiting_;
    TaskSlot task_;
};

} // namespace corvane
