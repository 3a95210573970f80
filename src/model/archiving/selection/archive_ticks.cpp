#include "model/archiving/selection/archive_ticks.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace corvane {

namespace {

struct PruneJob {
    CandidateInputs inputs;
    SharedMessageList known; // null: the candidates have to be made
    ArchiveSelection selection;
};

struct RangeJob {
    CandidateInputs inputs;
    SharedMessageList known; // as above
    ArchiveSelection selection;
    SharedText from;
    SharedText to;
};

struct ChangedTicks {
    SharedMessageList candidates;
    std::optional<ArchiveSelection> selection; // absent: as it was
};

// Absent when cancelled.
std::optional<ChangedTicks> prune(const PruneJob& job, const TaskHandle& task) {
    ChangedTicks pruned{job.known ? job.known : makeCandidates(job.inputs, task.stopToken()), std::nullopt};
    if (!pruned.candidates) return std::nullopt;
    SharedTextSet kept;
    for (const MailMessageRecord& message : *pruned.candidates) {
        if (job.selection.contains(message.id)) kept.insert(message.id);
    }
    if (kept.size() != job.selection.size()) pruned.selection = ArchiveSelection(std::move(kept));
    return pruned;
}

// Absent when cancelled.
std::optional<ChangedTicks> withRange(const RangeJob& job, const TaskHandle& task) {
    ChangedTicks extended{job.known ? job.known : makeCandidates(job.inputs, task.stopToken()), std::nullopt};
    if (!extended.candidates) return std::nullopt;
    const auto find = [&](const SharedText& id) {
        return std::ranges::find(*extended.candidates, id, &MailMessageRecord::id);
    };
    const auto [low, high] = std::minmax({find(job.from), find(job.to)});
    if (high == extended.candidates->end()) return extended;
    extended.selection = job.selection;
    for (auto message = low; message <= high; ++message) {
        if (!job.selection.contains(message->id)) extended.selection->toggle(message->id);
    }
    extended.selection = extended.selection->joined();
    return extended;
}

} // namespace

ArchiveTicks::ArchiveTicks(ModelContext& context, ArchiveCandidates& candidates, QObject* parent)
  : QObject(parent)
  , candidates_(candidates)
  , pruneTask_(context.tasks)
  , rangeTask_(context.tasks) {}

MessageList ArchiveTicks::selectedArchiveMessages() {
    MessageList selected;
    for (const MailMessageRecord& message : *candidates_.archiveCandidates()) {
        if (selection_.contains(message.id)) selected.push_back(message);
    }
    return selected;
}

bool ArchiveTicks::isWholeOfferSelected() const {
    return candidates_.candidateOffer() && selection_.isExactly(candidates_.candidateOffer());
}

void ArchiveTicks::selectWholeOffer() {
    setArchiveSelection(candidates_.candidateOffer() ? ArchiveSelection(candidates_.candidateOffer())
                                                     : ArchiveSelection());
}

void ArchiveTicks::setArchiveSelection(ArchiveSelection selection) {
    selection_ = std::move(selection);
    Q_EMIT selectionChanged();
}

void ArchiveTicks::toggleArchiveSelection(std::string_view id) {
    selection_.toggle(id);
    Q_EMIT selectionChanged();
}

void ArchiveTicks::selectAllArchiveCandidates() {
    selectFirstArchiveCandidates(candidates_.archiveCandidates()->size());
}

void ArchiveTicks::selectFirstArchiveCandidates(std::size_t count) {
    SharedTextSet ids;
    for (const MailMessageRecord& message : *candidates_.archiveCandidates()) {
        if (ids.size() >= count) break;
        ids.insert(message.id);
    }
    setArchiveSelection(std::move(ids));
}

void ArchiveTicks::selectArchiveRange(std::string_view from, std::string_view to) {
    RangeJob job{candidates_.inputs(), candidates_.known(), selection_, SharedText(from), SharedText(to)};
    rangeTask_.start(TaskPriority::userInitiated, job, &withRange, [this, job](ChangedTicks extended) {
        // Ticks or candidates have changed meanwhile.
        if (job.selection != selection_ || job.inputs != candidates_.inputs())
            return selectArchiveRange(job.from, job.to);
        candidates_.keep(job.inputs, std::move(extended.candidates));
        if (extended.selection) setArchiveSelection(std::move(*extended.selection));
    });
}

void ArchiveTicks::pruneArchiveSelection() {
    if (selection_.empty()) return;
    PruneJob job{candidates_.inputs(), candidates_.known(), selection_};
    pruneTask_.start(TaskPriority::userInitiated, job, &prune,
                     [this, inputs = job.inputs, from = job.selection](ChangedTicks pruned) {
                         // Ticks or candidates have changed meanwhile.
                         if (from != selection_ || inputs != candidates_.inputs())
                             return pruneArchiveSelection();
                         candidates_.keep(inputs, std::move(pruned.candidates));
                         if (pruned.selection) setArchiveSelection(std::move(*pruned.selection));
                     });
}

} // namespace corvane
