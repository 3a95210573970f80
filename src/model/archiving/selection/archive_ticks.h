// The candidates that the user has ticked. Main thread. Ids of no candidate may stand among them until the
// next prune; a run never archives them.
#pragma once

#include <cstddef>
#include <string_view>

#include <QObject>

#include "model/archiving/selection/archive_candidates.h"
#include "model/archiving/selection/archive_selection.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class ArchiveTicks : public QObject {
    Q_OBJECT

  public:
    ArchiveTicks(ModelContext& context, ArchiveCandidates& candidates, QObject* parent = nullptr);

    // A copy is a snapshot.
    [[nodiscard]] const ArchiveSelection& selectedArchiveMessageIDs() const { return selection_; }

    // The ticked candidates, in their order.
    [[nodiscard]] MessageList selectedArchiveMessages();

    // All of the offer is ticked, known without a look at each.
    [[nodiscard]] bool isWholeOfferSelected() const;

    // Ticks exactly what is offered. Without an offer no tick is left.
    void selectWholeOffer();

    // Ticks the message, or takes its tick away; it need not be a candidate.
    void toggleArchiveSelection(std::string_view id);

    // These three replace the ticks.
    void selectAllArchiveCandidates();

    void selectNoArchiveCandidates() { setArchiveSelection({}); }

    void setArchiveSelection(ArchiveSelection selection);

    // The first `count` candidates.
    void selectFirstArchiveCandidates(std::size_t count);

    // Adds everything between both, in the candidates' order; no effect when one of them is no candidate. The
    // places of both are looked for in the background; `selectionChanged` follows.
    void selectArchiveRange(std::string_view from, std::string_view to);

    // Drops what is no candidate, in the background.
    void pruneArchiveSelection();

  Q_SIGNALS:
    void selectionChanged();

  private:
    ArchiveCandidates& candidates_;
    ArchiveSelection selection_;
    TaskSlot pruneTask_;
    TaskSlot rangeTask_;
};

} // namespace corvane
