// The messages of the current scan or cache, and everything that is derived from them alone and from what is
// archived: lookups, availability on this machine, statistics. Main thread; the large work happens in one
// background run, the availability run, whose results arrive in one step.
//
// All of it is one published state. Every new generation of messages starts a run, here and nowhere else, so
// whoever reads while availability isn't known has only to wait for `availabilityPublished`.
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
#include "model/mail/messages/catalog_state.h"
#include "model/mail/scan/scan_cache_writer.h"
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

    // Never null.
    [[nodiscard]] const SharedCatalogState& state() const { return state_; }

    [[nodiscard]] const SharedMessageList& messages() const { return state_->shown()->messages; }

    // As it is known now: the record may have another preview than the one in the list. Null for an unknown
    // id; valid until the next change.
    [[nodiscard]] const MailMessageRecord* messageByID(std::string_view id) const;

    [[nodiscard]] bool isAvailabilityKnown() const { return state_->isAvailabilityKnown; }

    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& locallyAvailableIDs() const {
        return state_->availability->locallyAvailableIDs;
    }

    [[nodiscard]] const std::shared_ptr<const YearByID>& messageYearByID() const {
        return state_->availability->yearByID;
    }

    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& archivedMessageIDs() const {
        return state_->availability->archivedMessageIDs;
    }

    // All that the availability run of the generation has found; of pointers none is null.
    [[nodiscard]] const AvailabilityResult& availability() const { return *state_->availability; }

    // What runs are given from now on, for work that can't wait for one.
    [[nodiscard]] AvailabilityInputs availabilityInputs() const { return inputs_(); }

    [[nodiscard]] const MailScanSummary& summary() const { return state_->summary; }

    // Of all messages of the generation.
    [[nodiscard]] const std::vector<YearStat>& yearStats() const { return state_->set->yearStats; }

    [[nodiscard]] const std::vector<YearStat>& cachedLocalYearStats() const {
        return state_->availability->localYearStats;
    }

    [[nodiscard]] const std::vector<AccountYearStatGroup>& cachedAccountYearStats() const {
        return state_->availability->accountYearStats;
    }

    [[nodiscard]] const std::vector<AccountYearStatGroup>& cachedMailAccountYearStats() const {
        return state_->availability->mailAccountYearStats;
    }

    // Whether the files of new messages have just been seen by the scan that lists them, or have to be looked
    // for.
    enum class Files { unknown, justSeen };

    // A new generation with its whole reaction: nothing is available until the availability run has ended.
    void setMessages(SharedMessageSet set, MailScanSummary summary, Files files = Files::unknown);

    // Empties the list with the same reaction, for a scan that lists others or found none. From here on what
    // is shown is partial, until the next generation.
    void emptyForScan(MailScanSummary summary = {});

    // The growing list of a running scan, without any reaction.
    void showProgress(SharedMessageSet set, MailScanSummary summary);

    // A generation from the cache. With the available ids and statistics everything is valid at once. What
    // the file holds, where that is known, isn't written to it again.
    void restore(SharedMessageSet set, MailScanSummary summary, std::optional<AvailabilityResult> known,
                 std::optional<ScanCacheWrite> cached = {});

    // The statistics of a home snapshot, before its messages are there.
    void applyHomeSnapshot(const MailHomeSnapshot& snapshot);

    // Unless forced, a generation that is known or being worked on isn't worked on again.
    void refreshAvailabilityCacheAsync(bool force);

    // Writes the scan cache if the last availability run left another state for it than the one of this
    // generation that was written last. Called when the list shows: the writing takes both processors for
    // longer than the list does. `scannedAt` is when the mail was read; absent: now.
    void saveCacheIfDue(const std::optional<Date>& scannedAt);

    // Gives the message another preview until the next generation. The list keeps the old one: a copy of
    // hundreds of thousands of records for each message that is looked at would be too much.
    void replacePreview(std::string_view id, SharedText preview);

  Q_SIGNALS:
    // A new generation, or a progress update of a scan.
    void messagesChanged();
    // In front of messagesChanged: what was derived of the earlier messages holds no more.
    void generationReplaced();
    void summaryChanged();
    // The derived state is valid for the present messages.
    void availabilityPublished();
    void statisticsChanged();
    void archivedMessagesChanged();
    void previewReplaced(const QString& id);

  private:
    // Releases the earlier state in the background.
    void setState(CatalogState state);
    void setGeneration(CatalogState state, Files files);
    void publishEmpty();
    void publish(SharedAvailability availability);

    ModelContext& context_;
    InputsProvider inputs_;
    SharedCatalogState state_ = std::make_shared<const CatalogState>();
    Files files_ = Files::unknown; // of the generation
    std::unordered_map<SharedText, MailMessageRecord, TextHash, TextEqual> withNewPreview_; // by id
    std::optional<ScanCacheState> dueCache_;
    std::optional<ScanCacheWrite> readCache_;  // of this generation
    std::optional<ScanCacheState> savedCache_; // likewise
    ScanCacheWriter cacheWriter_;
    TaskSlot availabilityRefreshTask_;
};

} // namespace corvane
