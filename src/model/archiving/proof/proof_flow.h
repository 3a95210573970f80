// Comparing what is here with what is archived, byte for byte, on request: one proof at a time, in the
// background at low priority, behind whatever else the program does. Main thread.
//
// What it reads is kept as it goes (KeptReadings), so a proof that was cancelled or killed loses nothing;
// what follows from it is published with the catalog's next state.
#pragma once

#include <functional>
#include <optional>

#include <QObject>

#include "model/archiving/proof/kept_readings.h"
#include "model/archiving/proof/proof_job.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class ProofFlow : public QObject {
    Q_OBJECT

  public:
    // What a proof works on, but for its scope; asked on the main thread at its start.
    using JobProvider = std::function<ProofJob()>;

    ProofFlow(ModelContext& context, KeptReadings& readings, JobProvider job, QObject* parent = nullptr);

    // Reads both sides of every message in the scope that is archived by its id and not proven yet, or whose
    // originals have changed since; what is unreadable is tried again. No effect while one is under way.
    // `proofEnded` follows.
    void prove(ProofScope scope);

    // The proof stops at the next file and reports its end.
    void cancel() { task_.requestStop(); }

    // Present while a proof is under way.
    [[nodiscard]] const std::optional<ProofProgress>& progress() const { return progress_; }

    [[nodiscard]] bool isProving() const { return progress_.has_value(); }

    // The last one's, without its readings; absent before the first.
    [[nodiscard]] const std::optional<ProofEnd>& lastEnd() const { return lastEnd_; }

  Q_SIGNALS:
    void progressChanged();
    void proofEnded();

  private:
    void setProgress(std::optional<ProofProgress> progress);
    void end(ProofEnd end);

    KeptReadings& readings_;
    JobProvider job_;
    std::optional<ProofProgress> progress_;
    std::optional<ProofEnd> lastEnd_;
    TaskSlot task_;
};

} // namespace corvane
