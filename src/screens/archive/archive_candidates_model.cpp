#include "screens/archive/archive_candidates_model.h"

#include <memory>
#include <utility>

#include "screens/lists/message_lines.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

struct TickJob {
    screens::MessageRows rows;
    bool ticked = false;
    ArchiveSelection selection; // so far
};

ArchiveSelection ticksOf(TickJob job, const TaskHandle&) {
    job.rows.rows.forEach([&](int row) {
        const SharedText& id = (*job.rows.messages)[static_cast<std::size_t>(row)].id;
        if (job.selection.contains(id) != job.ticked) job.selection.toggle(id);
    });
    return job.selection.joined();
}

} // namespace

struct ArchiveCandidatesModel::SumJob {
    SharedMessageList messages;
    ArchiveSelection selection;
    bool areAllTicked = false; // known without a look at each
};

ArchiveCandidatesModel::ArchiveCandidatesModel(CorvaneViewModel& model, DesktopActions& desktop,
                                               QObject* parent)
  : MessageListModel(parent)
  , model_(model)
  , desktop_(desktop)
  , compareTask_(model.context().tasks)
  , sumTask_(model.context().tasks)
  , tickTask_(model.context().tasks)
  , copyTask_(model.context().tasks) {
    connect(&model.archiving().candidates, &ArchiveCandidates::archiveCandidatesReady, this, [this] {
        if (isLoading_) show(model_.archiving().candidates.archiveCandidates());
    });
    connect(&model.archiving().ticks, &ArchiveTicks::selectionChanged, this, [this] {
        if (isOwnChange_ || count() == 0) return;
        sumSelection();
        notifyAllRows({TickedRole});
    });
}

QVariant ArchiveCandidatesModel::value(const MailMessageRecord& message, int role) const {
    return role == TickedRole ? QVariant(isTicked(message)) : MessageListModel::value(message, role);
}

QHash<int, QByteArray> ArchiveCandidatesModel::roleNames() const {
    QHash<int, QByteArray> names = MessageListModel::roleNames();
    names.insert(TickedRole, "ticked");
    return names;
}

bool ArchiveCandidatesModel::isTicked(const MailMessageRecord& message) const {
    return model_.archiving().ticks.selectedArchiveMessageIDs().contains(message.id);
}

void ArchiveCandidatesModel::load() {
    isLoading_ = true;
    Q_EMIT loadingChanged();
    model_.archiving().candidates.refreshArchiveCandidatesAsync();
}

void ArchiveCandidatesModel::clear() {
    compareTask_.cancel();
    tickTask_.cancel();
    isLoading_ = false;
    anchor_ = {};
    const auto none = std::make_shared<const MessageList>();
    apply(none, messageRowChanges(*records(), *none));
    setSum({});
    Q_EMIT loadingChanged();
}

void ArchiveCandidatesModel::show(const SharedMessageList& candidates) {
    struct Lists {
        SharedMessageList from;
        SumJob to;
    };

    struct Shown {
        RowChanges changes;
        Sum sum;
    };

    const ArchiveSelection& ticks = model_.archiving().ticks.selectedArchiveMessageIDs();
    compareTask_.start(
        TaskPriority::userInitiated,
        Lists{records(), {candidates, ticks, model_.archiving().ticks.isWholeOfferSelected()}},
        [](const Lists& lists, const TaskHandle&) {
            return Shown{messageRowChanges(*lists.from, *lists.to.messages), sumOf(lists.to)};
        },
        [this, candidates, ticks](const Shown& shown) {
            isLoading_ = false;
            apply(candidates, shown.changes);
            setTroubles(MessageTroubles::known(model_));
            setSum(shown.sum);
            if (ticks != model_.archiving().ticks.selectedArchiveMessageIDs()) sumSelection();
            Q_EMIT loadingChanged();
        });
}

std::set<std::int64_t> ArchiveCandidatesModel::yearsOfFew() const {
    constexpr int mostLookedAt = 500;
    std::set<std::int64_t> years;
    if (count() > mostLookedAt) return years;
    const YearByID& known = *model_.mail().catalog.messageYearByID();
    for (const MailMessageRecord& message : *records()) {
        const auto year = known.find(message.id);
        if (year == known.end()) return {};
        years.insert(year->second);
    }
    return years;
}

ArchiveCandidatesModel::Sum ArchiveCandidatesModel::sumOf(const SumJob& job) {
    Sum sum;
    for (const MailMessageRecord& message : *job.messages) {
        if (!job.areAllTicked && !job.selection.contains(message.id)) continue;
        sum.count += 1;
        sum.bytes += message.messageSize;
    }
    return sum;
}

void ArchiveCandidatesModel::sumSelection() {
    if (model_.archiving().ticks.selectedArchiveMessageIDs().empty()) return setSum({});
    sumTask_.start(
        TaskPriority::userInitiated,
        SumJob{records(), model_.archiving().ticks.selectedArchiveMessageIDs(),
               model_.archiving().ticks.isWholeOfferSelected()},
        [](const SumJob& job, const TaskHandle&) { return sumOf(job); },
        [this](const Sum& sum) { setSum(sum); });
}

void ArchiveCandidatesModel::setSum(const Sum& sum) {
    sumTask_.cancel();
    selected_ = sum;
    Q_EMIT selectionSummed();
}

int ArchiveCandidatesModel::tickState() const {
    if (selected_.count == 0) return 0;
    return selected_.count == count() ? 1 : 2;
}

void ArchiveCandidatesModel::toggleTick(int row) {
    const MailMessageRecord* const message = record(row);
    if (message == nullptr) return;
    isOwnChange_ = true;
    model_.archiving().ticks.toggleArchiveSelection(message->id);
    isOwnChange_ = false;
    const std::int64_t sign = isTicked(*message) ? 1 : -1;
    anchor_ = message->id;
    notifyRows(row, row, {TickedRole});
    // A sum that is being made is of the ticks before.
    if (sumTask_.isRunning()) return sumSelection();
    setSum({selected_.count + sign, selected_.bytes + sign * message->messageSize});
}

void ArchiveCandidatesModel::toggleTicks(int row) {
    if (selection()->count() < 2 || !selection()->isSelected(row)) return toggleTick(row);
    tickTask_.start(TaskPriority::userInitiated,
                    TickJob{{records(), selection()->rows()},
                            !isTicked(*record(row)),
                            model_.archiving().ticks.selectedArchiveMessageIDs()},
                    &ticksOf, [this](ArchiveSelection selection) {
                        model_.archiving().ticks.setArchiveSelection(std::move(selection));
                    });
}

void ArchiveCandidatesModel::tickRange(int row) {
    const MailMessageRecord* const message = record(row);
    if (message == nullptr) return;
    if (anchor_.empty()) anchor_ = message->id;
    model_.archiving().ticks.selectArchiveRange(anchor_, message->id);
}

void ArchiveCandidatesModel::setTicksOfAll(bool ticked) {
    if (!ticked) {
        tickTask_.cancel();
        model_.archiving().ticks.selectNoArchiveCandidates();
        return;
    }
    tickTask_.start(
        TaskPriority::userInitiated, records(),
        [](const SharedMessageList& all, const TaskHandle&) {
            SharedTextSet ids;
            ids.reserve(all->size());
            for (const MailMessageRecord& message : *all) ids.insert(message.id);
            return ids;
        },
        [this](SharedTextSet ids) { model_.archiving().ticks.setArchiveSelection(std::move(ids)); });
}

void ArchiveCandidatesModel::tickAll() {
    setTicksOfAll(true);
}

void ArchiveCandidatesModel::toggleAllTicks() {
    setTicksOfAll(tickState() != 1);
}

void ArchiveCandidatesModel::copySelection() {
    copyTask_.start(TaskPriority::userInitiated, screens::MessageRows{records(), selection()->rows()},
                    &screens::linesOfRows, [this](const QString& lines) { desktop_.copy(lines); });
}

QString ArchiveCandidatesModel::wholeSender(int row) const {
    const MailMessageRecord* const message = record(row);
    return message == nullptr ? QString() : screens::shownLine(message->sender);
}

QString ArchiveCandidatesModel::spokenCandidate(int row) const {
    const MailMessageRecord* const message = record(row);
    if (message == nullptr) return {};
    return spokenName(*message) +
           (isTicked(*message) ? QStringLiteral("，已勾选") : QStringLiteral("，未勾选"));
}

} // namespace corvane
