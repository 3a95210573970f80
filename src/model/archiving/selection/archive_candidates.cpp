#include "model/archiving/selection/archive_candidates.h"

#include <utility>

#include "listing/message_statistics.h"

namespace corvane {

namespace {

CandidateRules candidateRulesOf(const ModelFilters& filters) {
    return {filters.candidates().minimumCandidateBytes, filters.candidates().transferMaxYear,
            filters.filterAccountPrefixes(), filters.candidates().archiveFilterYears};
}

struct CandidatesJob {
    CandidateInputs inputs;
    SharedMessageList known; // null: not made yet
};

SharedMessageList candidatesOf(const CandidatesJob& job, const TaskHandle& task) {
    return job.known ? job.known : makeCandidates(job.inputs, task.stopToken());
}

} // namespace

ArchiveCandidates::ArchiveCandidates(ModelContext& context, const MessageCatalog& catalog,
                                     const ModelFilters& filters, QObject* parent)
  : QObject(parent)
  , context_(context)
  , catalog_(catalog)
  , filters_(filters)
  , countTask_(context.tasks)
  , candidatesTask_(context.tasks) {}

CandidateInputs ArchiveCandidates::inputs() const {
    return {.messages = catalog_.messages(),
            .rules = candidateRulesOf(filters_),
            .offer = offer_,
            .locallyAvailableIDs = catalog_.locallyAvailableIDs(),
            .archivedMessageIDs = catalog_.archivedMessageIDs(),
            .archivedBaseIDs = nullptr,
            .withheldIDs = catalog_.availability().withheldIDs,
            .yearByID = catalog_.messageYearByID()};
}

SharedMessageList ArchiveCandidates::known() const {
    return madeOf_ == inputs() ? made_ : nullptr;
}

void ArchiveCandidates::keep(CandidateInputs inputs, SharedMessageList candidates) {
    if (madeOf_ == inputs) return;
    madeOf_ = std::move(inputs);
    context_.tasks.discard(std::exchange(made_, std::move(candidates)));
}

const SharedMessageList& ArchiveCandidates::archiveCandidates() {
    const CandidateInputs current = inputs();
    if (madeOf_ != current) keep(current, makeCandidates(current));
    return made_;
}

void ArchiveCandidates::refreshArchiveCandidatesAsync() {
    candidatesTask_.start(TaskPriority::userInitiated, CandidatesJob{inputs(), known()}, &candidatesOf,
                          [this, of = inputs()](SharedMessageList candidates) {
                              // Whoever changed an input has asked again or will ask for the list itself.
                              if (of != inputs()) return;
                              keep(of, std::move(candidates));
                              Q_EMIT archiveCandidatesReady();
                          });
}

void ArchiveCandidates::setCandidateOffer(std::shared_ptr<const SharedTextSet> ids) {
    context_.tasks.discard(std::exchange(offer_, std::move(ids)));
}

MailScanSummary ArchiveCandidates::archiveCandidateSummary() {
    const auto& candidates = *archiveCandidates();
    return makeSummary(allOf(candidates), static_cast<std::int64_t>(candidates.size()));
}

std::int64_t ArchiveCandidates::cachedCandidateCount(const std::optional<std::string>& accountPrefix,
                                                     const std::set<std::int64_t>& years) const {
    std::int64_t count = 0;
    for (const AccountYearStatGroup& group : catalog_.cachedAccountYearStats()) {
        if (accountPrefix && group.accountPrefix != *accountPrefix) continue;
        for (const YearStat& stat : group.years) {
            if (years.empty() || years.contains(stat.year)) count += stat.messageCount;
        }
    }
    return count;
}

void ArchiveCandidates::setCount(std::int64_t count, bool ready) {
    if (candidateCount_ == count && candidateCountReady_ == ready) return;
    candidateCount_ = count;
    candidateCountReady_ = ready;
    Q_EMIT candidateCountChanged();
}

void ArchiveCandidates::markArchiveCandidateCountStale() {
    countTask_.cancel();
    const bool isEmpty = catalog_.messages()->empty();
    setCount(isEmpty ? 0 : candidateCount_, isEmpty);
    // An outdated list isn't kept alive for a comparison.
    if (!madeOf_ || madeOf_->messages == catalog_.messages()) return;
    context_.tasks.discard(std::make_shared<CandidateInputs>(std::move(*madeOf_)));
    madeOf_.reset();
    context_.tasks.discard(std::exchange(made_, std::make_shared<const MessageList>()));
}

CandidateInputs ArchiveCandidates::countInputs() const {
    CandidateInputs counted = inputs();
    counted.offer = nullptr; // the count is that of the filters
    if (!catalog_.isAvailabilityKnown()) {
        counted.locallyAvailableIDs = nullptr;
        counted.yearByID = nullptr;
        counted.archivedMessageIDs = nullptr;
        counted.archivedBaseIDs = catalog_.availabilityInputs().archivedBaseIDs;
    }
    return counted;
}

void ArchiveCandidates::refreshArchiveCandidateCountAsync() {
    if (candidateCountReady_ || countTask_.isRunning()) return;
    countTask_.start(
        TaskPriority::utility, countInputs(),
        [](const CandidateInputs& counted, const TaskHandle& task) {
            return countCandidates(counted, task.stopToken());
        },
        [this](std::int64_t count) { setCount(count, true); });
}

void ArchiveCandidates::setKnownCandidateCount(std::int64_t count) {
    countTask_.cancel();
    setCount(count, true);
}

} // namespace corvane
