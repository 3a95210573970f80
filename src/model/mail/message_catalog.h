// The messages of the current scan or cache, and everything that is derived from them alone and from what is
// archived: lookups, availability on this machine, statistics. Main thread; the large work happens in one
// background run, the availability run, whose results arrive in one step.
//
// Every change of the messages starts a new generation (`messagesToken`). The derived state is valid while
// `availabilityToken` equals it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <QObject>

#include "listing/availability.h"
#include "listing/message_set.h"
#include "listing/message_statistics.h"
#include "model/archiving/archived_status.h"
#include "model/mail/scan_cache_writer.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/mail_message_record.h"
#include "records/statistics_records.h"
#include "records/stores/scan_cache_file.h"
#include "text/shared_text.h"

namespace corvane {

class MessageCatalog : public QObject {
    Q_OBJECT

  public:
    using InputsProvider = std::function<AvailabilityInputs()>;

    // `inputs` is asked on the main thread at the start of each availability run.
    MessageCatalog(ModelContext& context, InputsProvider inputs, QObject* parent = nullptr);

    [[nodiscard]] const SharedMessageList& messages() const { return set_->messages; }

    // The present generation, for whoever may have to bring it back.
    [[nodiscard]] const SharedMessageSet& messageSet() const { return set_; }

    // As it is known now: the record may have another preview than the one in the list. Valid until the next
    // change.
    [[nodiscard]] const MailMessageRecord* messageByID(std::string_view id) const;

    [[nodiscard]] std::int64_t messagesToken() const { return messagesToken_; }

    [[nodiscard]] std::int64_t availabilityToken() const { return availabilityToken_; }

    [[nodiscard]] bool isAvailabilityKnown() const { return availabilityToken_ == messagesToken_; }

    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& locallyAvailableIDs() const {
        return derived_.locallyAvailableIDs;
    }

    [[nodiscard]] const std::shared_ptr<const YearByID>& messageYearByID() const { return derived_.yearByID; }

    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& archivedMessageIDs() const {
        return archivedMessageIDs_;
    }

    // For the tasks that make new messages or base ids.
    [[nodiscard]] const std::shared_ptr<ArchivedStatus>& archivedStatus() const { return archivedStatus_; }

    [[nodiscard]] const MailScanSummary& summary() const { return summary_; }

    [[nodiscard]] const std::vector<YearStat>& cachedLocalYearStats() const {
        return derived_.localYearStats;
    }

    [[nodiscard]] const std::vector<AccountYearStatGroup>& cachedAccountYearStats() const {
        return derived_.accountYearStats;
    }

    [[nodiscard]] const std::vector<AccountYearStatGroup>& cachedMailAccountYearStats() const {
        return derived_.mailAccountYearStats;
    }

    [[nodiscard]] const std::vector<AccountYearStatGroup>& cachedUnbackedAccountYearStats() const {
        return derived_.unbackedAccountYearStats;
    }

    [[nodiscard]] std::int64_t localMessageCount() const { return derived_.localCount; }

    [[nodiscard]] std::int64_t localMessageBytes() const { return derived_.localBytes; }

    [[nodiscard]] std::int64_t statsRevision() const { return statsRevision_; }

    [[nodiscard]] bool deleteSafetyStatsReady() const { return deleteSafetyStatsReady_; }

    // Statistics of all messages, computed at the first read after a change.
    [[nodiscard]] const std::vector<YearStat>& yearStats() const;

    struct CountAndBytes {
        std::int64_t count = 0;
        std::int64_t bytes = 0;
    };

    [[nodiscard]] CountAndBytes mailMessageSummary() const;

    // Whether the files of new messages have just been seen by the scan that lists them, or have to be looked
    // for.
    enum class Files { unknown, justSeen };

    // A new generation with its whole reaction: nothing is available until the availability run has ended.
    void setMessages(SharedMessageSet set, MailScanSummary summary, Files files = Files::unknown);

    // The growing list of a running scan, without any reaction.
    void showProgress(SharedMessageSet set, MailScanSummary summary);

    // A generation from the cache. With the available ids and statistics everything is valid at once.
    void restore(SharedMessageSet set, MailScanSummary summary, std::optional<AvailabilityResult> known);

    // The statistics of a home snapshot, before its messages are there.
    void applyHomeSnapshot(const MailHomeSnapshot& snapshot);

    void setSummary(MailScanSummary summary);

    // Unless forced, a generation that is known or being worked on isn't worked on again.
    void refreshAvailabilityCacheAsync(bool force);

    // Writes the scan cache if the last availability run left a new state for it. Called when the list shows:
    // the writing takes both processors for longer than the list does.
    void saveCacheIfDue();

    // Gives the message another preview until the next generation. The list keeps the old one: a copy of
    // hundreds of thousands of records for each message that is looked at would be too much.
    void replacePreview(std::string_view id, SharedText preview);

    // From the stable ids of the messages and the archived base ids.
    void rebuildArchivedMessageStatusCache();

  Q_SIGNALS:
    // A new generation, or a progress update of a scan.
    void messagesChanged();
    void summaryChanged();
    // The derived state is valid for the present messages.
    void availabilityPublished();
    void statisticsChanged();
    void archivedMessagesChanged();
    void previewReplaced(const QString& id);

  private:
    void setSet(SharedMessageSet set);
    void publish(std::int64_t token, AvailabilityResult result);
    void clearDerivedOfNoMessages();

    ModelContext& context_;
    InputsProvider inputs_;
    SharedMessageSet set_ = std::make_shared<const MessageSet>();
    std::unordered_map<SharedText, MailMessageRecord, TextHash, TextEqual> withNewPreview_; // by id
    MailScanSummary summary_;
    std::int64_t messagesToken_ = 0;
    std::int64_t availabilityToken_ = 0;
    std::optional<std::int64_t> availabilityRefreshTokenInFlight_;
    std::optional<std::int64_t> filesSeenToken_; // of the generation whose files the scan has just seen
    AvailabilityResult derived_;
    std::shared_ptr<ArchivedStatus> archivedStatus_ = std::make_shared<ArchivedStatus>();
    std::shared_ptr<const SharedTextSet> archivedMessageIDs_ = std::make_shared<const SharedTextSet>();
    std::int64_t statsRevision_ = 0;
    bool deleteSafetyStatsReady_ = false;
    std::optional<ScanCacheState> dueCache_;
    mutable std::int64_t yearStatsToken_ = -1;
    mutable std::vector<YearStat> cachedYearStats_;
    mutable std::int64_t mailMessageSummaryToken_ = -1;
    mutable CountAndBytes cachedMailMessageSummary_;
    ScanCacheWriter cacheWriter_;
    TaskSlot availabilityRefreshTask_;
};

} // namespace corvane
