#include "model/archiving/archive_ticks.h"

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

struct Pruned {
    SharedMessageList candidates;
    std::optional<ArchiveSelection> kept; // absent: all of it
};

// Absent when cancelled.
std::optional<Pruned> prune(const PruneJob& job, const TaskHandle& task) {
    Pruned pruned{job.known ? job.known : makeCandidates(job.inputs, task.stopToken()), std::nullopt};
    if (!pruned.candidates) return std::nullopt;
    SharedTextSet kept;
    for (const MailMessageRecord& message : *pruned.candidates) {
        if (job.selection.contains(message.id)) kept.insert(message.id);
    }
    if (kept.size() != job.selection.size()) pruned.kept = ArchiveSelection(std::move(kept));
    return pruned;
}

} // namespace

ArchiveTicks::ArchiveTicks(ModelContext& context, ArchiveCandidates& candidates, QObject* parent)
  : QObject(parent)
  , candidates_(candidates)
  , pruneTask_(context.tasks) {}

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
    const MessageList& candidates = *candidates_.archiveCandidates();
    const auto find = [&](std::string_view id) {
        return std::find_if(candidates.begin(), candidates.end(),
                            [&](const auto& message) { return message.id == id; });
    };
    const auto [low, high] = std::minmax({find(from), find(to)});
    if (high == candidates.end()) return;
    for (auto message = low; message <= high; ++message) {
        if (!selection_.contains(message->id)) selection_.toggle(message->id);
    }
    Q_EMIT selectionChanged();
}

void ArchiveTicks::pruneArchiveSelection() {
    if (selection_.empty()) return;
    PruneJob job{candidates_.inputs(), candidates_.known(), selection_};
    pruneTask_.start(TaskPriority::userInitiated, job, &prune,
                     [this, inputs = job.inputs, from = job.selection](Pruned pruned) {
                         // Ticks or candidates have changed meanwhile.
                         if (from != selection_ || inputs != candidates_.inputs())
                             return pruneArchiveSelection();
                         candidates_.keep(inputs, std::move(pruned.candidates));
                         if (pruned.kept) setArchiveSelection(std::move(*pruned.kept));
                     });
}

} // namespace corvane
