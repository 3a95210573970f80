#include "screens/home/organize_data.h"

#include <algorithm>

#include <fmt/format.h>

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
    MessageCatalog& catalog = model.catalog();
    connect(&catalog, &MessageCatalog::messagesChanged, this, &OrganizeData::refreshWhenDue);
    connect(&catalog, &MessageCatalog::availabilityPublished, this, &OrganizeData::refreshWhenDue);
    connect(&catalog, &MessageCatalog::archivedMessagesChanged, this, &OrganizeData::refreshWhenDue);
    connect(&catalog, &MessageCatalog::statisticsChanged, this, &OrganizeData::refreshWhenDue);
    connect(&model.filters(), &ModelFilters::candidateFilterChanged, this, &OrganizeData::refreshWhenDue);
    connect(&model.accounts(), &AccountDirectory::accountsChanged, this, &OrganizeData::refreshWhenDue);
    connect(&model.scanFlow(), &ScanFlow::stateChanged, this, &OrganizeData::refreshWhenDue);
    refresh();
}

bool OrganizeData::hasOnlyStatistics() const {
    return model_.catalog().messages()->empty() && !model_.catalog().cachedAccountYearStats().empty();
}

std::string OrganizeData::organizeYearSectionsSignature() const {
    const MessageCatalog& catalog = model_.catalog();
    std::string names;
    for (const MailAccount& account : model_.accounts().availableAccounts())
        names += fmt::format("{}\x01{}\x01", account.urlPrefix, account.distinguishedLabel());
    return fmt::format("{}|{}|{}|{}|{}|{}|{}|{}", catalog.messagesToken(), catalog.availabilityToken(),
                       catalog.locallyAvailableIDs()->size(), model_.library().archivedEmailBaseIDsToken(),
                       catalog.archivedMessageIDs()->size(),
                       hasOnlyStatistics() ? catalog.statsRevision() : -1,
                       model_.filters().transferMaxYear().value_or(-1), names);
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
    if (model_.scanFlow().state().isScanning()) return;
    const std::string signature = organizeYearSectionsSignature();
    if (signature == (computingSignature_.empty() ? publishedSignature_ : computingSignature_)) return;
    if (hasOnlyStatistics()) {
        publish(organizeOverviewOfStatistics(model_.catalog().cachedAccountYearStats()), signature);
    } else if (model_.catalog().isAvailabilityKnown()) {
        compute();
    }
}

void OrganizeData::compute() {
    const MessageCatalog& catalog = model_.catalog();
    computingSignature_ = organizeYearSectionsSignature();
    OrganizeInput input{
        catalog.messages(),        catalog.locallyAvailableIDs(),      catalog.archivedMessageIDs(),
        catalog.messageYearByID(), model_.filters().transferMaxYear(), model_.accounts().availableAccounts()};
    task_.start(
        TaskPriority::userInitiated, std::move(input),
        [](const OrganizeInput& shared, const TaskHandle& task) {
            return computeOrganizeYearSections(shared, task.stopToken());
        },
        [this, signature = computingSignature_](SharedOrganizeOverview overview) {
            publish(std::move(overview), signature);
        });
}

void OrganizeData::publish(SharedOrganizeOverview overview, const std::string& signature) {
    task_.cancel();
    computingSignature_.clear();
    if (isHeld_) return;
    overview_ = std::move(overview);
    isKnown_ = true;
    publishedSignature_ = signature;
    // An empty start must not hold back what comes first.
    if (!overview_->accounts.empty()) sincePublished_.start();
    Q_EMIT overviewChanged();
    // What changed while this was computed.
    refreshWhenDue();
}

IndexedYears OrganizeData::indexedYears() const {
    const IndexCounts& counts = model_.counts();
    return {counts.indexedYearCounts(), counts.indexedYearCountsByAccount(),
            model_.accounts().selectedAccountPrefixes()};
}

DeletionSafety OrganizeData::deletionSafety(const std::optional<std::string>& accountKey,
                                            const std::set<std::int64_t>& years) const {
    return corvane::deletionSafety(overview_->tallies, accountKey, years, indexedYears());
}

} // namespace corvane
