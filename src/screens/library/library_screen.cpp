#include "screens/library/library_screen.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "records/archived/counted_bytes.h"
#include "records/texts/formatters.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

QString countAndSize(std::int64_t count, std::int64_t bytes) {
    if (count == 0) return screens::shownMessageCount(0);
    return QStringLiteral("%1 · %2").arg(screens::shownMessageCount(count),
                                         screens::wholeText(formatByteCount(bytes)));
}

struct SelectedMail {
    SharedLibraryList list;
    std::vector<EntryPosition> entries;
};

// So many are summed up at once; more take longer than a frame may.
constexpr std::size_t fewSelected = 2'000;

std::int64_t bytesOf(const SelectedMail& mail, const TaskHandle&) {
    std::int64_t bytes = 0;
    for (const EntryPosition entry : mail.entries)
        bytes += countedBytes(mail.list->index().entry(entry).record);
    return bytes;
}

} // namespace

// The next rows, with what was found out about them in the background.
struct LibraryScreen::Update {
    RowsOfList content;
    RowChanges changes;
    LibraryFacets facets;
};

LibraryScreen::LibraryScreen(CorvaneViewModel& model, DesktopActions& desktop, QObject* parent)
  : QObject(parent)
  , model_(model)
  , texts_(model.context(), model.library().bodyTexts)
  , rows_(model.library(), texts_)
  , selection_(model.library().list, rows_)
  , filters_(model.library().list)
  , search_(model.library())
  , mail_(model)
  , attachments_(model)
  , removal_(model)
  , actions_(model, desktop, rows_, selection_, mail_, removal_)
  , rowsTask_(model.context().tasks)
  , sumTask_(model.context().tasks) {
    wire();
}

void LibraryScreen::wire() {
    LibraryListFlow& flow = model_.library().list;
    connect(&flow, &LibraryListFlow::listChanged, this, &LibraryScreen::updateRows);
    connect(&flow, &LibraryListFlow::selectionChanged, this, &LibraryScreen::updateSelection);
    connect(&flow, &LibraryListFlow::filtersChanged, this, [this] {
        isRearranging_ = true;
        updateState();
    });
    connect(&flow, &LibraryListFlow::searchChanged, this,
            [this] { texts_.setQuery(model_.library().list.debouncedQuery()); });
    connect(&model_.library().presence, &PresenceFlow::presenceChanged, this, &LibraryScreen::showMail);
    connect(&model_.library().loader, &LibraryLoader::archiveLocationsChanged, &rows_,
            &LibraryRowModel::notifyPlaces);
    connect(&model_.library().loader, &LibraryLoader::archivedFilesChanged, &rows_,
            &LibraryRowModel::notifyPlaces);
    connect(&model_.library().loader, &LibraryLoader::archiveLocationsChanged, this,
            &LibraryScreen::updateState);
    connect(&model_.library().loader, &LibraryLoader::archivedEntriesChanged, this,
            &LibraryScreen::updateState);
    connect(&model_.library().loader, &LibraryLoader::loadFinished, this, &LibraryScreen::updateState);
    connect(&model_.library().bodyTexts, &BodyTexts::bodyIndexFinished, &texts_, &RowTexts::forget);
}

void LibraryScreen::appear() {
    if (std::exchange(hasAppeared_, true)) return;
    model_.context().startupLog.mark(fmt::format("ArchiveLibrary onAppear entries={} visible={}",
                                                 model_.library().loader.archivedEntries()->size(),
                                                 rows_.content().rows->size()));
    model_.library().loader.loadEmailArchiveIndex(model_.archiving().destinations.transferDestination(),
                                                  false);
    model_.library().presence.refreshArchivedOriginalPresenceIfNeeded(false);
    model_.library().index.rebuildLibraryIndexIfNeeded();
    updateRows();
}

void LibraryScreen::updateRows() {
    waiting_.reset();

    struct Job {
        RowsOfList from;
        SharedLibraryList to;
        OpenThreads open;
    };

    rowsTask_.start(
        TaskPriority::userInitiated, Job{rows_.content(), model_.library().list.list(), open_},
        [](const Job& job, const TaskHandle&) {
            auto update = std::make_shared<Update>();
            update->content = {job.to, libraryRows(*job.to, job.open)};
            update->changes = libraryRowChanges(job.from, update->content);
            update->facets = LibraryFacets::of(*job.to);
            return update;
        },
        [this](std::shared_ptr<Update> update) { applyUnlessHeld(std::move(update)); });
    updateState();
}

void LibraryScreen::applyUnlessHeld(std::shared_ptr<Update> update) {
    if (isHeld_)
        waiting_ = std::move(update);
    else
        apply(*update);
}

void LibraryScreen::setHeld(bool held) {
    if (isHeld_ == held) return;
    isHeld_ = held;
    Q_EMIT heldChanged();
    if (const auto update = std::exchange(waiting_, nullptr); !held && update) apply(*update);
}

void LibraryScreen::apply(Update& update) {
    RowsOfList earlier = rows_.content();
    rows_.apply(std::move(update.content), update.changes);
    // The end of a large list takes longer than a frame.
    model_.context().tasks.discard(std::make_shared<RowsOfList>(std::move(earlier)));
    filters_.setFacets(std::move(update.facets));
    if (rows_.isOfPresentIndex()) rows_.setShownSelection(model_.library().list.selection());
    selection_.remap(update.changes.newRows, rows_.count());
    if (rows_.isOfPresentIndex()) model_.library().list.selectFirstVisibleIfNeeded();
    updateSelection();
    if (std::exchange(isRearranging_, false)) Q_EMIT listRearranged();
    Q_EMIT summaryChanged();
    updateState();
}

// Positions of another index than that of the rows wait for its rows.
void LibraryScreen::updateSelection() {
    if (!rows_.isOfPresentIndex()) return;
    rows_.setShownSelection(model_.library().list.selection());
    selection_.showSelected();
    sumUpSelection();
    showMail();
    Q_EMIT selection_.selectionChanged(0, rows_.count() - 1);
    Q_EMIT summaryChanged();
}

void LibraryScreen::showMail() {
    const ArchiveLibraryIndex& index = rows_.content().list->index();
    const auto selected = rows_.shownSelection().selectedID();
    const ArchivedEntry* entry = selected && *selected < index.size() ? &index.entry(*selected) : nullptr;
    const auto before = mail_.entry();
    mail_.show(entry, entry == nullptr ? ArchivedOriginalPresenceStatus::unknown
                                       : model_.library().presence.statusOfThisRun(*entry));
    if (before != mail_.entry()) attachments_.show(entry, mail_.fileState() == archived_file::State::Here);
}

LibraryScreen::State LibraryScreen::currentState() const {
    if (rows_.count() > 0) return State::Listed;
    if (model_.library().loader.archivedEntries()->empty())
        return model_.library().loader.isLoading() ? State::Loading : State::Empty;
    const bool isWaiting = rowsTask_.isRunning() || !model_.library().list.isCurrent() ||
                           !model_.library().index.isCurrent() || search_.isBusy();
    // The answer to a search stays until there is another one.
    return isWaiting && state_ != State::NoMatch ? State::Loading : State::NoMatch;
}

void LibraryScreen::updateState() {
    state_ = currentState();
    Q_EMIT stateChanged();
}

QString LibraryScreen::awayPlaces() const {
    QStringList names;
    for (const ArchiveLocation& location : model_.library().loader.archiveLocations()) {
        if (!location.isConnected) names += screens::shownLine(location.displayName);
    }
    return names.join(u'、');
}

void LibraryScreen::sumUpSelection() {
    sumTask_.cancel();
    selectedBytes_.reset();
    if (selection_.count() <= 1) return;
    SelectedMail mail{rows_.content().list, selection_.entries()};
    if (mail.entries.size() <= fewSelected) {
        selectedBytes_ = bytesOf(mail, TaskHandle({}));
        return;
    }
    sumTask_.start(TaskPriority::userInitiated, std::move(mail), &bytesOf, [this](std::int64_t bytes) {
        selectedBytes_ = bytes;
        Q_EMIT summaryChanged();
    });
}

QString LibraryScreen::summaryText() const {
    if (selection_.count() > 1) {
        return QStringLiteral("已选 ") + (selectedBytes_ ? countAndSize(selection_.count(), *selectedBytes_)
                                                         : screens::shownMessageCount(selection_.count()));
    }
    const auto entries = std::ssize(rows_.content().list->entries.entries());
    const QString sum = countAndSize(entries, filters_.facets().bytes);
    return rows_.content().list->inputs.filters.matchedIDs ? QStringLiteral("找到 ") + sum : sum;
}

void LibraryScreen::toggleThread(int row) {
    const LibraryRow* thread = rows_.rowAt(row);
    if (thread == nullptr || thread->kind != LibraryRow::Kind::thread) return;
    const std::string name = threadName(rows_.content().list->index(), thread->entry);
    if (thread->isOpen)
        open_.erase(name);
    else
        open_.insert(name);
    // Rows that are being made don't know of it yet.
    if (rowsTask_.isRunning() || waiting_) return updateRows();
    if (thread->isOpen)
        removeMembers(row);
    else
        insertMembers(row);
}

void LibraryScreen::insertMembers(int row) {
    const auto at = static_cast<std::size_t>(row);
    const LibraryRows members = memberRows(*rows_.content().list, rows_.rowAt(row)->group);
    LibraryRows rows = *rows_.content().rows;
    rows[at].isOpen = true;
    rows.insert(rows.begin() + row + 1, members.begin(), members.end());
    const auto memberCount = static_cast<int>(members.size());
    RowChanges changes;
    changes.inserted.push_back({row + 1, memberCount});
    changes.changed.push_back({row, 1});
    for (int each = 0; each < rows_.count(); ++each)
        changes.newRows.push_back(each <= row ? each : each + memberCount);
    applyRows(std::move(rows), std::move(changes));
}

void LibraryScreen::removeMembers(int row) {
    LibraryRows rows = *rows_.content().rows;
    rows[static_cast<std::size_t>(row)].isOpen = false;
    const auto first = rows.begin() + row + 1;
    const auto end = std::find_if(
        first, rows.end(), [](const LibraryRow& each) { return each.kind != LibraryRow::Kind::member; });
    const auto memberCount = static_cast<int>(end - first);
    rows.erase(first, end);
    RowChanges changes;
    changes.removed.push_back({row + 1, memberCount});
    changes.changed.push_back({row, 1});
    for (int each = 0; each < rows_.count(); ++each) {
        const bool isMember = each > row && each <= row + memberCount;
        // The current row goes to the thread with its members.
        changes.newRows.push_back(isMember ? -1 : each <= row ? each : each - memberCount);
    }
    if (selection_.currentRow() > row && selection_.currentRow() <= row + memberCount) selection_.select(row);
    applyRows(std::move(rows), std::move(changes));
}

void LibraryScreen::applyRows(LibraryRows rows, RowChanges changes) {
    RowsOfList content{rows_.content().list, std::make_shared<const LibraryRows>(std::move(rows))};
    rows_.apply(std::move(content), changes);
    selection_.remap(changes.newRows, rows_.count());
}

void LibraryScreen::closeThread(int row) {
    const LibraryRow* at = rows_.rowAt(row);
    if (at == nullptr) return;
    if (at->isOpen) return toggleThread(row);
    if (at->kind != LibraryRow::Kind::member) return;
    while (row > 0 && rows_.rowAt(row)->kind == LibraryRow::Kind::member) --row;
    selection_.select(row);
}

void LibraryScreen::openThread(int row) {
    const LibraryRow* at = rows_.rowAt(row);
    if (at == nullptr || at->kind != LibraryRow::Kind::thread) return;
    if (at->isOpen)
        selection_.select(row + 1);
    else
        toggleThread(row);
}

} // namespace corvane
