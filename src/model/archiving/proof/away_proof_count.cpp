#include "model/archiving/proof/away_proof_count.h"

#include <memory>
#include <utility>

#include "locations/loading/all_files_here.h"

namespace corvane {

namespace {

struct CountJob {
    SharedMessageList messages;
    SharedProofTable proofs;
    std::shared_ptr<const YearByID> years;
    ArchiveRoots roots;
    ProofScope scope;
};

AwayProofs counted(const CountJob& job, const TaskHandle&) {
    return awayProofs(*job.proofs, job.roots, *job.messages,
                      [&](const MailMessageRecord& message) { return job.scope.holds(message, *job.years); });
}

} // namespace

AwayProofCount::AwayProofCount(ModelContext& context, const MessageCatalog& catalog, QObject* parent)
  : QObject(parent)
  , catalog_(catalog)
  , task_(context.tasks) {}

void AwayProofCount::count(const ProofScope& scope, const std::vector<ArchiveLocation>& locations,
                           const ArchivedFiles& files) {
    CountJob job{catalog_.messages(), catalog_.availability().proofs, catalog_.messageYearByID(),
                 disconnectedRoots(locations), scope};
    if (job.roots.empty() && areAllFilesHere(files, locations)) {
        task_.cancel();
        return set({});
    }
    task_.start(TaskPriority::utility, std::move(job), &counted,
                [this](const AwayProofs& found) { set(found); });
}

void AwayProofCount::set(const AwayProofs& found) {
    if (found == found_) return;
    found_ = found;
    Q_EMIT changed();
}

} // namespace corvane
