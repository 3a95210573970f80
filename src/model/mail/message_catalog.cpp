#include "model/mail/message_catalog.h"

#include <utility>

namespace corvane {

MessageCatalog::MessageCatalog(ModelContext& context, InputsProvider inputs, QObject* parent)
  : QObject(parent)
  , context_(context)
  , inputs_(std::move(inputs))
  , cacheWriter_(context)
  , availabilityRefreshTask_(context.tasks) {}

const MailMessageRecord* MessageCatalog::messageByID(std::string_view id) const {
    if (const auto known = withNewPreview_.find(id); known != withNewPreview_.end()) return &known->second;
    return set_->find(id);
}

const std::vector<YearStat>& MessageCatalog::yearStats() const {
    if (yearStatsToken_ != messagesToken_) {
        cachedYearStats_ = set_->counted ? set_->yearStats : computeYearStats(allOf(*messages()));
        yearStatsToken_ = messagesToken_;
    }
    return cachedYearStats_;
}

MessageCatalog::CountAndBytes MessageCatalog::mailMessageSummary() const {
    if (mailMessageSummaryToken_ != messagesToken_) {
        cachedMailMessageSummary_ = {static_cast<std::int64_t>(messages()->size()), 0};
        for (const MailMessageRecord& message : *messages())
            cachedMailMessageSummary_.bytes += message.messageSize;
        mailMessageSummaryToken_ = messagesToken_;
    }
    return cachedMailMessageSummary_;
}

void MessageCatalog::setSet(SharedMessageSet set) {
    // The years refer to the ids of the earlier list.
    context_.tasks.discard(std::exchange(derived_.yearByID, std::make_shared<const YearByID>()));
    withNewPreview_.clear();
    context_.tasks.discard(std::exchange(set_, std::move(set)));
}

void MessageCatalog::replacePreview(std::string_view id, SharedText preview) {
    const MailMessageRecord* message = messageByID(id);
    if (message == nullptr) return;
    withNewPreview_.insert_or_assign(message->id, message->replacingPreview(std::move(preview)));
    Q_EMIT previewReplaced(QString::fromUtf8(id.data(), static_cast<qsizetype>(id.size())));
}

void MessageCatalog::setSummary(MailScanSummary summary) {
    summary_ = std::move(summary);
    Q_EMIT summaryChanged();
}

void MessageCatalog::setMessages(SharedMessageSet set, MailScanSummary summary, Files files) {
    setSet(std::move(set));
    setSummary(std::move(summary));
    ++messagesToken_;
    if (files == Files::justSeen) filesSeenToken_ = messagesToken_;
    availabilityToken_ = -1;
    availabilityRefreshTokenInFlight_.reset();
    derived_.locallyAvailableIDs = std::make_shared<const SharedTextSet>();
    rebuildArchivedMessageStatusCache();
    Q_EMIT messagesChanged();
    refreshAvailabilityCacheAsync(false);
}

void MessageCatalog::showProgress(SharedMessageSet set, MailScanSummary summary) {
    setSet(std::move(set));
    setSummary(std::move(summary));
    Q_EMIT messagesChanged();
}

void MessageCatalog::restore(SharedMessageSet set, MailScanSummary summary,
                             std::optional<AvailabilityResult> known) {
    setSet(std::move(set));
    setSummary(std::move(summary));
    ++messagesToken_;
    availabilityRefreshTokenInFlight_.reset();
    rebuildArchivedMessageStatusCache();
    if (known) {
        availabilityToken_ = messagesToken_;
        known->mailAccountYearStats = std::move(derived_.mailAccountYearStats);
        known->unbackedAccountYearStats = std::move(derived_.unbackedAccountYearStats);
        derived_ = std::move(*known);
        ++statsRevision_;
        Q_EMIT statisticsChanged();
    }
    Q_EMIT messagesChanged();
    if (known) Q_EMIT availabilityPublished();
    refreshAvailabilityCacheAsync(true);
}

void MessageCatalog::applyHomeSnapshot(const MailHomeSnapshot& snapshot) {
    setSummary(snapshot.summary);
    derived_.localYearStats = snapshot.localYearStats;
    derived_.accountYearStats = snapshot.localAccountYearStats;
    derived_.localCount = snapshot.localMessageCount;
    derived_.localBytes = snapshot.localMessageBytes;
    Q_EMIT statisticsChanged();
}

void MessageCatalog::refreshAvailabilityCacheAsync(bool force) {
    const std::int64_t token = messagesToken_;
    if (!force && (availabilityToken_ == token || availabilityRefreshTokenInFlight_ == token)) return;
    availabilityRefreshTask_.cancel();
    availabilityRefreshTokenInFlight_ = token;
    deleteSafetyStatsReady_ = false;
    if (messages()->empty()) {
        clearDerivedOfNoMessages();
        return;
    }
    AvailabilityJob job{set_, inputs_(), nullptr, filesSeenToken_ == token};
    if (availabilityToken_ == token && !derived_.locallyAvailableIDs->empty()) {
        job.knownAvailable = derived_.locallyAvailableIDs;
    }
    availabilityRefreshTask_.start(
        TaskPriority::utility, std::move(job),
        [](const AvailabilityJob& given, const TaskHandle& task) {
            return computeAvailability(given, task.stopToken());
        },
        [this, token](AvailabilityResult result) { publish(token, std::move(result)); });
}

void MessageCatalog::clearDerivedOfNoMessages() {
    availabilityToken_ = messagesToken_;
    availabilityRefreshTokenInFlight_.reset();
    derived_.locallyAvailableIDs = std::make_shared<const SharedTextSet>();
    derived_.unbackedAccountYearStats.clear();
    Q_EMIT availabilityPublished();
}

void MessageCatalog::publish(std::int64_t token, AvailabilityResult result) {
    if (token != messagesToken_) return;
    derived_ = std::move(result);
    availabilityToken_ = token;
    availabilityRefreshTokenInFlight_.reset();
    deleteSafetyStatsReady_ = true;
    ++statsRevision_;
    Q_EMIT statisticsChanged();
    if (set_->isComplete) {
        dueCache_ = ScanCacheState{messages(), summary_, derived_.locallyAvailableIDs,
                                   derived_.localYearStats, derived_.accountYearStats};
    }
    Q_EMIT availabilityPublished();
}

void MessageCatalog::saveCacheIfDue() {
    if (dueCache_) cacheWriter_.save(*std::exchange(dueCache_, std::nullopt));
}

void MessageCatalog::rebuildArchivedMessageStatusCache() {
    auto archived = archivedStatus_->of(messages(), inputs_().archivedBaseIDs);
    context_.tasks.discard(std::exchange(archivedMessageIDs_, std::move(archived)));
    Q_EMIT archivedMessagesChanged();
}

} // namespace corvane
