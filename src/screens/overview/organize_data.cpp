#include "screens/overview/organize_data.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace corvane {

OrganizeData::OrganizeData(CorvaneViewModel& model, std::chrono::milliseconds publishInterval,
                           QObject* parent)
  : QObject(parent)
  , model_(model)
  , publishInterval_(publishInterval)
  , task_(model.context().tasks) {
    due_.setSingleShot(true);
    due_.setTimerType(Qt::PreciseTimer); // a coarse one comes early
    connect(&due_, &QTimer::timeout, this, &OrganizeData::refresh);
    MessageCatalog& catalog = model.mail().catalog;
    connect(&catalog, &MessageCatalog::messagesChanged, this, &OrganizeData::refreshWhenDue);
    connect(&catalog, &MessageCatalog::availabilityPublished, this, &OrganizeData::refreshWhenDue);
    connect(&catalog, &MessageCatalog::archivedMessagesChanged, this, &OrganizeData::refreshWhenDue);
    connect(&catalog, &MessageCatalog::statisticsChanged, this, &OrganizeData::refreshWhenDue);
    connect(&model.mail().filters, &ModelFilters::candidateFilterChanged, this,
            &OrganizeData::refreshWhenDue);
    connect(&model.mail().accounts, &AccountDirectory::accountsChanged, this, &OrganizeData::refreshWhenDue);
    connect(&model.mail().scanFlow, &ScanFlow::stateChanged, this, &OrganizeData::refreshWhenDue);
    refresh();
}

bool OrganizeData::hasOnlyStatistics() const {
    return model_.mail().catalog.messages()->empty() &&
           !model_.mail().catalog.cachedAccountYearStats().empty();
}

OrganizeData::Inputs OrganizeData::inputs() const {
    const MessageCatalog& catalog = model_.mail().catalog;
    OrganizeInput input{catalog.messages(),
                        catalog.locallyAvailableIDs(),
                        catalog.archivedMessageIDs(),
                        catalog.messageYearByID(),
                        model_.mail().filters.candidates().transferMaxYear,
                        model_.mail().accounts.availableAccounts(),
                        catalog.availability().setAsideIDs,
                        catalog.availability().withheldIDs,
                        catalog.availability().proofs};
    return {std::move(input), catalog.isAvailabilityKnown(),
            hasOnlyStatistics() ? catalog.state()->availability : nullptr};
}

void OrganizeData::refreshWhenDue() {
    if (due_.isActive()) return;
    const qint64 passed = sincePublished_.isValid() ? sincePublished_.elapsed() : publishInterval_.count();
    // Also without a wait on the next turn of the event loop: one change comes with several signals.
    due_.start(static_cast<int>(std::max<qint64>(0, publishInterval_.count() - passed)));
}

void OrganizeData::setHeld(bool held) {
    isHeld_ = held;
    if (!held) refreshWhenDue();
}

void OrganizeData::refresh() {
    if (isHeld_) return;
    // A scan shows its own progress; its list is whole when it has ended.
    if (model_.mail().scanFlow.state().isScanning()) return;
    Inputs current = inputs();
    if (current == (computing_ ? computing_ : published_)) return;
    if (current.statistics) {
        auto overview = organizeOverviewOfStatistics(current.statistics->accountYearStats);
        publish(std::move(overview), std::move(current));
    } else if (current.isAvailabilityKnown) {
        compute(std::move(current));
    }
}

void OrganizeData::compute(Inputs current) {
    computing_ = std::move(current);
    task_.start(
        TaskPriority::userInitiated, computing_->input,
        [](const OrganizeInput& input, const TaskHandle& task) {
            return computeOrganizeYearSections(input, task.stopToken());
        },
        [this, of = *computing_](SharedOrganizeOverview overview) { publish(std::move(overview), of); });
}

void OrganizeData::publish(SharedOrganizeOverview overview, Inputs of) {
    task_.cancel();
    computing_.reset();
    if (isHeld_) return;
    overview_ = std::move(overview);
    isKnown_ = true;
    // The lists of before may be the last ones.
    auto earlier = std::make_shared<std::optional<Inputs>>(std::exchange(published_, std::move(of)));
    model_.context().tasks.discard(std::move(earlier));
    // An empty start must not hold back what comes first.
    if (!overview_->accounts.empty()) sincePublished_.start();
    Q_EMIT overviewChanged();
    // What changed while this was computed.
    refreshWhenDue();
}

IndexedYears OrganizeData::indexedYears() const {
    const IndexCounts& counts = model_.mail().counts;
    return {counts.indexedYearCounts(), counts.indexedYearCountsByAccount(),
            model_.mail().accounts.selectedAccountPrefixes(), &counts.partialYearCountsByAccount()};
}

DeletionSafety OrganizeData::deletionSafety(const std::optional<std::string>& accountKey,
                                            const std::set<std::int64_t>& years) const {
    return corvane::deletionSafety(overview_->tallies, accountKey, years, indexedYears());
}

} // namespace corvane
