#include "model/library/library_list_flow.h"

#include <chrono>
#include <utility>

#include "text/trim.h"

namespace corvane {

namespace {

using namespace std::chrono_literals;

constexpr auto typingPause = 220ms;

// So few that filtering them takes less than handing the work to another thread.
constexpr std::size_t fewEntries = 2'000;

bool isMadeAtOnce(const LibraryListInputs& inputs) {
    return inputs.index->size() <= fewEntries || inputs.filters == LibraryFilters();
}

SharedLibraryList makeList(LibraryListInputs inputs, const TaskHandle&) {
    return LibraryList::make(std::move(inputs));
}

} // namespace

LibraryListFlow::LibraryListFlow(ModelContext& context, LibraryIndexFlow& index, BodyTexts& texts,
                                 QObject* parent)
  : QObject(parent)
  , context_(context)
  , index_(index)
  , texts_(texts)
  , list_(LibraryList::make(inputs()))
  , listTask_(context.tasks) {
    searchDelay_.setSingleShot(true);
    searchDelay_.setInterval(typingPause);
    connect(&searchDelay_, &QTimer::timeout, this, &LibraryListFlow::startSearch);
    connect(&index, &LibraryIndexFlow::indexChanged, this, [this] {
        refresh();
        repeatSearch();
    });
    connect(&texts, &BodyTexts::bodyIndexFinished, this, &LibraryListFlow::repeatSearch);
}

template <class Value>
void LibraryListFlow::assign(Value& field, Value value) {
    if (field == value) return;
    field = std::move(value);
    Q_EMIT filtersChanged();
    refresh();
}

void LibraryListFlow::setLibraryLocationFilter(std::optional<std::string> root) {
    assign(filters_.libraryLocationFilter, std::move(root));
}

void LibraryListFlow::setLibraryAccountFilter(std::optional<std::string> key) {
    assign(filters_.libraryAccountFilter, std::move(key));
}

void LibraryListFlow::setLibraryMailboxFilter(std::optional<std::string> mailbox) {
    assign(filters_.libraryMailboxFilter, std::move(mailbox));
}

void LibraryListFlow::setLibraryYears(std::optional<YearSpan> years) {
    assign(filters_.years, years);
}

void LibraryListFlow::setSortAscending(bool ascending) {
    assign(order_, ascending ? LibraryOrder::oldestFirst : LibraryOrder::newestFirst);
}

void LibraryListFlow::showAccount(std::string key) {
    LibraryFilters filters = filters_;
    filters.libraryAccountFilter = std::move(key);
    filters.libraryMailboxFilter.reset();
    assign(filters_, std::move(filters));
}

void LibraryListFlow::showEverything() {
    LibraryFilters searchOnly;
    searchOnly.matchedIDs = filters_.matchedIDs;
    assign(filters_, std::move(searchOnly));
    setSearchText({});
}

void LibraryListFlow::setSearchText(std::string text) {
    if (searchText_ == text) return;
    searchText_ = std::move(text);
    asked_.reset();
    if (!text::trimWhitespaceAndNewlines(searchText_).empty()) {
        searchDelay_.start();
        Q_EMIT searchChanged();
        return;
    }
    searchDelay_.stop();
    debouncedQuery_.clear();
    rootsNotSearched_.clear();
    rootsNotPrepared_.clear();
    Q_EMIT searchChanged();
    setMatches(nullptr);
}

void LibraryListFlow::repeatSearch() {
    if (debouncedQuery_.empty() || searchDelay_.isActive()) return;
    searchDelay_.start();
    Q_EMIT searchChanged();
}

void LibraryListFlow::startSearch() {
    debouncedQuery_ = text::trimWhitespaceAndNewlines(searchText_);
    asked_ = std::make_shared<const std::string>(debouncedQuery_);
    Q_EMIT searchChanged();
    texts_.searchArchive(debouncedQuery_, [this, asked = std::weak_ptr(asked_)](ArchiveSearchResult found) {
        // Another keystroke, or the end of this object, has let go of it.
        if (!asked.expired()) applySearch(std::move(found));
    });
}

void LibraryListFlow::applySearch(ArchiveSearchResult found) {
    asked_.reset();
    rootsNotSearched_ = std::move(found.unreadableRoots);
    rootsNotPrepared_ = std::move(found.unpreparedRoots);
    Q_EMIT searchChanged();
    setMatches(std::make_shared<const SharedTextSet>(std::move(found.ids)));
}

void LibraryListFlow::setMatches(std::shared_ptr<const SharedTextSet> ids) {
    assign(filters_.matchedIDs, std::move(ids));
}

void LibraryListFlow::refresh() {
    LibraryListInputs wanted = inputs();
    if (wanted == list_->inputs) return listTask_.cancel();
    if (isMadeAtOnce(wanted)) {
        listTask_.cancel();
        publish(LibraryList::make(std::move(wanted)));
        return;
    }
    listTask_.start(TaskPriority::userInitiated, std::move(wanted), &makeList,
                    [this](SharedLibraryList list) { publish(std::move(list)); });
}

void LibraryListFlow::publish(SharedLibraryList list) {
    list_.swap(list);
    LibrarySelection selection = selection_;
    if (list->inputs.index != list_->inputs.index)
        selection = selection.movedTo(list_->index(), list->index());
    const auto& matches = list_->inputs.filters.matchedIDs;
    if (matches && matches != list->inputs.filters.matchedIDs)
        selection.selectFirstVisibleIfGone(list_->entries.entries(), list_->groups.view());
    if (list->inputs.filters != list_->inputs.filters) selection.keepVisible(list_->entries.entries());
    context_.tasks.discard(std::move(list)); // it may be the last that holds an index
    const bool isOther = selection != selection_;
    selection_ = std::move(selection);
    Q_EMIT listChanged();
    if (isOther) Q_EMIT selectionChanged();
}

void LibraryListFlow::selectLibraryRow(EntryPosition entry, SelectionKeys keys) {
    LibrarySelection selection = selection_;
    selection.selectLibraryRow(entry, keys, list_->entries.entries());
    setSelection(std::move(selection));
}

void LibraryListFlow::selectFirstVisibleIfNeeded() {
    LibrarySelection selection = selection_;
    selection.selectFirstVisibleIfNeeded(list_->groups.view());
    setSelection(std::move(selection));
}

void LibraryListFlow::selectAllVisible() {
    LibrarySelection selection = selection_;
    selection.selectAll(list_->entries.entries());
    setSelection(std::move(selection));
}

void LibraryListFlow::setSelection(LibrarySelection selection) {
    if (selection == selection_) return;
    selection_ = std::move(selection);
    Q_EMIT selectionChanged();
}

} // namespace corvane
