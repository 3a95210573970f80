// What was read for proofs, in memory and in its store. Main thread; reading, writing and copying are
// background work, one at a time, so nothing that was added is lost behind another addition.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <QObject>

#include "model/archiving/proof/seen_files.h"
#include "model/archiving/proof/stale_readings.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/archived/proof_facts.h"

namespace corvane {

using SharedReadings = std::shared_ptr<const ReadingBatch>;

class KeptReadings : public QObject {
    Q_OBJECT

  public:
    explicit KeptReadings(ModelContext& context, QObject* parent = nullptr);

    // Loads in the background what was kept, and later what another program has kept or taken back since;
    // `factsChanged` follows where there is any.
    void load();

    // Never null; empty until they are loaded.
    [[nodiscard]] const SharedProofFacts& facts() const { return kept_.facts; }

    enum class Store { hasThem, needsThem };

    // Adds readings in the background, behind what was kept; `factsChanged` follows unless there are none.
    // Never null.
    void add(SharedReadings readings, Store store);

    // Takes back, in the background, what was read of archived files that aren't as they were read: when
    // their disk is away this look is the last word on them.
    void compareWith(SeenFiles seen);

    // Takes readings away in the background, behind what is being added.
    void forget(ReadingPaths paths);

    // Takes away what is stale by these owners, once a run of the program.
    void prune(ReadingOwners owners);

  Q_SIGNALS:
    void factsChanged();

  private:
    struct Addition {
        SharedReadings readings;
        Store store = Store::needsThem;
    };

    struct Kept {
        SharedProofFacts facts = std::make_shared<const ProofFacts>();
        std::optional<FileStamp> stamp; // of the store as it was read or written; absent before that
        SharedReadings unsaved = std::make_shared<const ReadingBatch>(); // are in `facts` alone
    };

    struct Job;

    static Kept changed(const Job& job, const TaskHandle& task);
    void startIfIdle();
    void startNext();
    void publish(Kept kept);

    ModelContext& context_;
    Kept kept_;
    std::vector<Addition> waiting_;
    ReadingPaths forgotten_;
    std::optional<SeenFiles> seen_;       // the last ones that wait
    std::optional<ReadingOwners> owners_; // of the pruning that waits
    bool isPruned_ = false;
    bool isLoadWanted_ = true; // before everything else
    TaskSlot task_;
};

} // namespace corvane
