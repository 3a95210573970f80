// The messages that may be archived, as a list and as a number. Main thread; both are made in the background
// for whoever must not wait for them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include <QObject>

#include "listing/candidates.h"
#include "model/mail/messages/message_catalog.h"
#include "model/mail/messages/model_filters.h"
#include "model/tasks/task_slot.h"
#include "records/statistics_records.h"

namespace corvane {

class ArchiveCandidates : public QObject {
    Q_OBJECT

  public:
    ArchiveCandidates(ModelContext& context, const MessageCatalog& catalog, const ModelFilters& filters,
                      QObject* parent = nullptr);

    // In the order of the messages; computed here unless it is that of the present inputs already.
    [[nodiscard]] const SharedMessageList& archiveCandidates();

    // Makes the candidates in the background; `archiveCandidatesReady` follows, also when they are known
    // already. From then on `archiveCandidates` costs nothing.
    void refreshArchiveCandidatesAsync();

    // What the list depends on now: equal inputs have equal candidates.
    [[nodiscard]] CandidateInputs inputs() const;

    // The list of the present inputs; null when it isn't made.
    [[nodiscard]] SharedMessageList known() const;

    // Keeps a list that somebody else has made of these inputs.
    void keep(CandidateInputs inputs, SharedMessageList candidates);

    // While set, of these messages only are candidates made, whatever accounts and years the filters name;
    // null: of all messages. The count for the screens stays that of the filters.
    void setCandidateOffer(std::shared_ptr<const SharedTextSet> ids);

    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& candidateOffer() const { return offer_; }

    [[nodiscard]] MailScanSummary archiveCandidateSummary();

    // As last counted. It is counted on request, and stale as long as it isn't ready.
    [[nodiscard]] std::int64_t archiveCandidateCount() const { return candidateCount_; }

    [[nodiscard]] bool archiveCandidateCountReady() const { return candidateCountReady_; }

    // Counts in the background unless the count is ready; `candidateCountChanged` follows.
    void refreshArchiveCandidateCountAsync();

    // Something that candidates depend on has changed.
    void markArchiveCandidateCountStale();

    // Sets the count without counting: what a snapshot or the statistics say.
    void setKnownCandidateCount(std::int64_t count);

    // From the statistics alone; all years when `years` is empty.
    [[nodiscard]] std::int64_t cachedCandidateCount(const std::optional<std::string>& accountPrefix,
                                                    const std::set<std::int64_t>& years) const;

  Q_SIGNALS:
    void archiveCandidatesReady();
    void candidateCountChanged();

  private:
    [[nodiscard]] CandidateInputs countInputs() const;
    void setCount(std::int64_t count, bool ready);

    ModelContext& context_;
    const MessageCatalog& catalog_;
    const ModelFilters& filters_;
    std::shared_ptr<const SharedTextSet> offer_;
    std::optional<CandidateInputs> madeOf_; // absent: no list is made
    SharedMessageList made_ = std::make_shared<const MessageList>();
    std::int64_t candidateCount_ = 0;
    bool candidateCountReady_ = true;
    TaskSlot countTask_;
    TaskSlot candidatesTask_;
};

} // namespace corvane
