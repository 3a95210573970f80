#include "model/archiving/proof/proof_flow.h"

#include <memory>
#include <utility>

namespace corvane {

ProofFlow::ProofFlow(ModelContext& context, KeptReadings& readings, JobProvider job, QObject* parent)
  : QObject(parent)
  , readings_(readings)
  , job_(std::move(job))
  , task_(context.tasks) {}

void ProofFlow::prove(ProofScope scope) {
    if (isProving()) return;
    ProofJob job = job_();
    job.scope = std::move(scope);
    setProgress(ProofProgress());
    task_.startReporting<ProofProgress>(
        TaskPriority::utility, std::move(job), &runProof,
        [this](ProofProgress progress) { setProgress(progress); },
        [this](ProofEnd ended) { end(std::move(ended)); });
}

void ProofFlow::end(ProofEnd end) {
    readings_.add(end.readings, KeptReadings::Store::hasThem);
    end.readings = std::make_shared<const ReadingBatch>();
    lastEnd_ = std::move(end);
    setProgress(std::nullopt);
    Q_EMIT proofEnded();
}

void ProofFlow::setProgress(std::optional<ProofProgress> progress) {
    if (progress_ == progress) return;
    progress_ = progress;
    Q_EMIT progressChanged();
}

} // namespace corvane
