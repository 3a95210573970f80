// What may be archived, what the user has ticked, and the one archive run at a time. Main thread; the count
// for the screens and the run itself are background tasks.
#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>

#include <QObject>

#include "archive/mail_email_archiver.h"
#include "listing/candidates.h"
#include "model/mail/message_catalog.h"
#include "model/mail/model_filters.h"
#include "model/tasks/task_slot.h"
#include "records/archive_records.h"

namespace corvane {

// What the filters ask of a candidate.
CandidateRules candidateRulesOf(const ModelFilters& filters);

class ArchiveControl : public QObject {
    Q_OBJECT

  public:
    // A result, or the user's text of what kept the run from happening.
    using RunOutcome = std::expected<EmailArchiveRunResult, std::string>;
    using Completion = std::function<void(RunOutcome)>;

    ArchiveControl(ModelContext& context, MessageCatalog& catalog, ModelFilters& filters,
                   QObject* parent = nullptr);

    // In the order of the messages; computed at most once a state of everything it depends on.
    [[nodiscard]] const SharedMessageList& archiveCandidates();

    // Makes the candidates in the background for whoever must not wait for them; `archiveCandidatesReady`
    // follows, also when they are known already. From then on `archiveCandidates` costs nothing.
    void refreshArchiveCandidatesAsync();

    // While set, of these messages only are candidates made, whatever accounts and years the filters name;
    // null gives all back. The count for the screens stays that of the filters.
    void setCandidateOffer(std::shared_ptr<const SharedTextSet> ids);

    // Selects all of the offer. `ids` equals it: a copy of hundreds of thousands of ids isn't made here.
    void selectWholeOffer(SharedTextSet ids);

    // Every candidate is selected, known without a look at each.
    [[nodiscard]] bool isWholeOfferSelected() const { return isWholeOfferSelected_; }

    [[nodiscard]] MailScanSummary archiveCandidateSummary();
    [[nodiscard]] MailScanSummary selectedArchiveSummary();
    [[nodiscard]] MessageList selectedArchiveMessages();

    [[nodiscard]] const SharedTextSet& selectedArchiveMessageIDs() const { return *selection_; }

    // The count for screens, made in the background.
    [[nodiscard]] std::int64_t archiveCandidateCount() const { return candidateCount_; }

    [[nodiscard]] bool archiveCandidateCountReady() const { return candidateCountReady_; }

    // From the statistics alone; all years when `years` is empty.
    [[nodiscard]] std::int64_t cachedCandidateCount(const std::optional<std::string>& accountPrefix,
                                                    const std::set<std::int64_t>& years);

    [[nodiscard]] const std::optional<EmailArchiveProgress>& emailArchiveProgress() const {
        return progress_;
    }

    [[nodiscard]] bool isArchiving() const { return completion_ != nullptr; }

    void toggleArchiveSelection(std::string_view id);
    void selectAllArchiveCandidates();

    void selectNoArchiveCandidates() { setArchiveSelection({}); }

    // Replaces what was selected. Ids of no candidate are dropped at the next prune and never archived.
    void setArchiveSelection(SharedTextSet ids);

    // The first `count` candidates.
    void selectFirstArchiveCandidates(std::size_t count);

    // Adds everything between both, in the candidates' order; nothing when one of them is no candidate.
    void selectArchiveRange(std::string_view from, std::string_view to);
    void pruneArchiveSelection();

    void markArchiveCandidateCountStale();
    void refreshArchiveCandidateCountAsync();

    // Sets the count without counting: what a snapshot or the statistics say.
    void setKnownCandidateCount(std::int64_t count);

    // What is archived has changed: candidates and count are stale.
    void archivedMessagesReplaced();

    // Archives the selection. `completion` is called once, on the main thread, after the run's place is free
    // again.
    void archiveSelectedEmails(const std::optional<std::string>& destination, Completion completion);

    // The run stops after the message at work and reports through its completion.
    void cancelEmailArchive();

    void setArchivedBaseIDs(std::shared_ptr<const SharedTextSet> baseIDs);

  Q_SIGNALS:
    void selectionChanged();
    void candidateCountChanged();
    void archiveCandidatesReady();
    void progressChanged();
    // A run has ended with a result. Runs of the same messages into the same place have the same signature.
    void archiveRunFinished(const corvane::EmailArchiveRunResult& result, const QString& destination,
                            const QString& signature);

  private:
    [[nodiscard]] std::string signature() const;
    [[nodiscard]] std::string candidatesSignature() const;
    [[nodiscard]] CandidateInputs candidateInputs() const;
    void setCount(std::int64_t count, bool ready);
    void setProgress(std::optional<EmailArchiveProgress> progress);
    void takeSelection(SharedTextSet ids);
    // For changes in place: a run reads its selection on its own thread, and keeps it.
    SharedTextSet& changeableSelection();
    void startRun(const std::string& destination);
    void finishRun(RunOutcome outcome, const std::string& destination, const QString& signature);

    ModelContext& context_;
    MessageCatalog& catalog_;
    ModelFilters& filters_;
    std::shared_ptr<const SharedTextSet> archivedBaseIDs_ = std::make_shared<const SharedTextSet>();
    std::int64_t archivedRevision_ = 0;
    std::shared_ptr<const SharedTextSet> offer_;
    std::int64_t offerRevision_ = 0;
    SharedMessageList candidatesCache_ = std::make_shared<const MessageList>();
    std::string candidatesSignature_;
    std::shared_ptr<SharedTextSet> selection_ = std::make_shared<SharedTextSet>();
    bool isSelectionOfARun_ = false;
    bool isWholeOfferSelected_ = false;
    // The candidates that hold the whole selection, where that is known.
    std::weak_ptr<const MessageList> selectedFrom_;
    std::int64_t candidateCount_ = 0;
    bool candidateCountReady_ = true;
    std::string candidateCountSignature_;
    std::optional<EmailArchiveProgress> progress_;
    Completion completion_;
    TaskSlot countTask_;
    TaskSlot candidatesTask_;
    TaskSlot runTask_;
};

} // namespace corvane
