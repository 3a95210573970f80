#include "model/mail/messages/message_catalog.h"

#include <string>
#include <utility>

#include "model/mail/store/mail_folder.h"
#include "model/mail/store/mail_store.h"

namespace corvane {

namespace {

// What stays when a generation goes: its statistics, until the next ones are there.
SharedAvailability statisticsOf(const AvailabilityResult& earlier) {
    AvailabilityResult kept = earlier;
    const AvailabilityResult nothingKnown;
    kept.locallyAvailableIDs = nothingKnown.locallyAvailableIDs;
    kept.yearByID = nothingKnown.yearByID;
    kept.recordedMessageIDs = nothingKnown.recordedMessageIDs;
    kept.ambiguousIDs = nothingKnown.ambiguousIDs;
    kept.archivedMessageIDs = nothingKnown.archivedMessageIDs;
    kept.proofs = nothingKnown.proofs;
    kept.setAsideIDs = nothingKnown.setAsideIDs;
    kept.withheldIDs = nothingKnown.withheldIDs;
    kept.troubledIDs = nothingKnown.troubledIDs;
    kept.archivedBaseIDs = nothingKnown.archivedBaseIDs;
    return std::make_shared<const AvailabilityResult>(std::move(kept));
}

struct AvailabilityRefresh {
    AvailabilityJob job;
    std::string mailRootPath;
};

} // namespace

MessageCatalog::MessageCatalog(ModelContext& context, InputsProvider inputs, QObject* parent)
  : QObject(parent)
  , context_(context)
  , inputs_(std::move(inputs))
  , cacheWriter_(context)
  , availabilityRefreshTask_(context.tasks) {}

const MailMessageRecord* MessageCatalog::messageByID(std::string_view id) const {
    if (const auto known = withNewPreview_.find(id); known != withNewPreview_.end()) return &known->second;
    return state_->shown()->find(id);
}

void MessageCatalog::setState(CatalogState state) {
    context_.tasks.discard(std::exchange(state_, std::make_shared<const CatalogState>(std::move(state))));
}

void MessageCatalog::replacePreview(std::string_view id, SharedText preview) {
    const MailMessageRecord* message = messageByID(id);
    if (message == nullptr) return;
    withNewPreview_.insert_or_assign(message->id, message->replacingPreview(std::move(preview)));
    Q_EMIT previewReplaced(QString::fromUtf8(id.data(), static_cast<qsizetype>(id.size())));
}

void MessageCatalog::setGeneration(CatalogState state, Files files) {
    availabilityRefreshTask_.cancel(); // its result is of the generation before
    files_ = files;
    readCache_.reset();
    savedCache_.reset();
    withNewPreview_.clear();
    setState(std::move(state));
    Q_EMIT summaryChanged();
    Q_EMIT archivedMessagesChanged();
    Q_EMIT generationReplaced();
}

void MessageCatalog::setMessages(SharedMessageSet set, MailScanSummary summary, Files files) {
    setGeneration({.set = std::move(set),
                   .growing = nullptr,
                   .summary = std::move(summary),
                   .availability = statisticsOf(*state_->availability),
                   .isAvailabilityKnown = false},
                  files);
    Q_EMIT messagesChanged();
    refreshAvailabilityCacheAsync(false);
}

void MessageCatalog::emptyForScan(MailScanSummary summary) {
    setGeneration({.set = std::make_shared<const MessageSet>(),
                   .growing = std::make_shared<const MessageSet>(),
                   .summary = std::move(summary),
                   .availability = statisticsOf(*state_->availability),
                   .isAvailabilityKnown = false},
                  Files::unknown);
    Q_EMIT messagesChanged();
    refreshAvailabilityCacheAsync(false);
}

void MessageCatalog::showProgress(SharedMessageSet set, MailScanSummary summary) {
    CatalogState state = *state_;
    state.growing = std::move(set);
    state.summary = std::move(summary);
    withNewPreview_.clear();
    setState(std::move(state));
    Q_EMIT summaryChanged();
    Q_EMIT messagesChanged();
}

void MessageCatalog::restore(SharedMessageSet set, MailScanSummary summary,
                             std::optional<AvailabilityResult> known, std::optional<ScanCacheWrite> cached) {
    SharedAvailability availability = statisticsOf(*state_->availability);
    if (known) {
        known->mailAccountYearStats = availability->mailAccountYearStats;
        known->unbackedAccountYearStats = availability->unbackedAccountYearStats;
        availability = std::make_shared<const AvailabilityResult>(std::move(*known));
    }
    setGeneration({.set = std::move(set),
                   .growing = nullptr,
                   .summary = std::move(summary),
                   .availability = std::move(availability),
                   .isAvailabilityKnown = known.has_value()},
                  Files::unknown);
    readCache_ = std::move(cached);
    if (known) Q_EMIT statisticsChanged();
    Q_EMIT messagesChanged();
    if (known) Q_EMIT availabilityPublished();
    refreshAvailabilityCacheAsync(true);
}

void MessageCatalog::applyHomeSnapshot(const MailHomeSnapshot& snapshot) {
    AvailabilityResult statistics = *state_->availability;
    statistics.localYearStats = snapshot.localYearStats;
    statistics.accountYearStats = snapshot.localAccountYearStats;
    statistics.localCount = snapshot.localMessageCount;
    statistics.localBytes = snapshot.localMessageBytes;
    CatalogState state = *state_;
    state.summary = snapshot.summary;
    state.availability = std::make_shared<const AvailabilityResult>(std::move(statistics));
    setState(std::move(state));
    Q_EMIT summaryChanged();
    Q_EMIT statisticsChanged();
}

void MessageCatalog::refreshAvailabilityCacheAsync(bool force) {
    if (!force && (isAvailabilityKnown() || availabilityRefreshTask_.isRunning())) return;
    if (state_->set->messages->empty()) return publishEmpty();
    AvailabilityRefresh refresh{{state_->set, inputs_(), nullptr, files_ == Files::justSeen},
                                mailStoreOf(context_).rootPath};
    if (isAvailabilityKnown() && !locallyAvailableIDs()->empty()) refresh.job.known = state_->availability;
    availabilityRefreshTask_.start(
        TaskPriority::utility, std::move(refresh),
        [](const AvailabilityRefresh& given, const TaskHandle& task) {
            AvailabilityJob job = given.job;
            job.mailVersion = mailVersionIn(given.mailRootPath);
            return computeAvailability(job, task.stopToken());
        },
        [this](AvailabilityResult result) {
            publish(std::make_shared<const AvailabilityResult>(std::move(result)));
        });
}

// Without messages there is nothing to look for. Of a whole scan that found none the statistics say so too.
void MessageCatalog::publishEmpty() {
    availabilityRefreshTask_.cancel();
    if (state_->set->isComplete) {
        AvailabilityResult nothingThere;
        nothingThere.archivedBaseIDs = inputs_().archivedBaseIDs;
        return publish(std::make_shared<const AvailabilityResult>(std::move(nothingThere)));
    }
    CatalogState state = *state_;
    AvailabilityResult statistics = *statisticsOf(*state.availability);
    statistics.unbackedAccountYearStats.clear();
    state.availability = std::make_shared<const AvailabilityResult>(std::move(statistics));
    state.isAvailabilityKnown = true;
    setState(std::move(state));
    Q_EMIT availabilityPublished();
}

void MessageCatalog::publish(SharedAvailability availability) {
    const bool isArchivedAnew = archivedMessageIDs() != availability->archivedMessageIDs ||
                                this->availability().proofs != availability->proofs ||
                                this->availability().setAsideIDs != availability->setAsideIDs;
    CatalogState state = *state_;
    state.availability = std::move(availability);
    state.isAvailabilityKnown = true;
    setState(std::move(state));
    Q_EMIT statisticsChanged();
    if (isArchivedAnew) Q_EMIT archivedMessagesChanged();
    if (state_->set->isComplete) {
        dueCache_ = ScanCacheState{state_->set->messages,    summary(),
                                   locallyAvailableIDs(),    cachedLocalYearStats(),
                                   cachedAccountYearStats(), std::nullopt};
    }
    Q_EMIT availabilityPublished();
}

void MessageCatalog::saveCacheIfDue(const std::optional<Date>& scannedAt) {
    if (!dueCache_) return;
    ScanCacheState due = *std::exchange(dueCache_, std::nullopt);
    due.scannedAt = scannedAt;
    if (savedCache_ == due) return;
    savedCache_ = due;
    const FileStamp held = readCache_ && readCache_->state == due ? readCache_->held : unknownStamp;
    cacheWriter_.save({std::move(due), held});
}

} // namespace corvane
