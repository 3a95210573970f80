// The library's list: its filters, its search, what they let through, and what is selected in it. Main
// thread; long lists are filtered in the background, and the earlier list stays until the new one is there.
//
// The list that is published names the index and the filters that it is of. The selection always belongs to
// that list's index.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QObject>
#include <QTimer>

#include "library/library_list.h"
#include "library/library_selection.h"
#include "model/library/body_texts.h"
#include "model/library/library_index_flow.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class LibraryListFlow : public QObject {
    Q_OBJECT

  public:
    // The other two must outlive it.
    LibraryListFlow(ModelContext& context, LibraryIndexFlow& index, BodyTexts& texts,
                    QObject* parent = nullptr);

    // Never null.
    [[nodiscard]] const SharedLibraryList& list() const { return list_; }

    // The list is of the present index and filters.
    [[nodiscard]] bool isCurrent() const { return list_->inputs == inputs(); }

    // As they were set last.
    [[nodiscard]] const LibraryFilters& filters() const { return filters_; }

    [[nodiscard]] bool sortAscending() const { return order_ == LibraryOrder::oldestFirst; }

    void setLibraryLocationFilter(std::optional<std::string> root);
    void setLibraryAccountFilter(std::optional<std::string> key);
    void setLibraryMailboxFilter(std::optional<std::string> mailbox);
    void setLibraryYears(std::optional<YearSpan> years);

    // No filter and no search.
    void showEverything();
    void setSortAscending(bool ascending);

    // Shows one account with all of its mailboxes.
    void showAccount(std::string key);

    // Searches shortly after the last change of the text; a blank one shows everything at once.
    void setSearchText(std::string text);

    [[nodiscard]] const std::string& searchText() const { return searchText_; }

    // A search was asked for, and its answer isn't there yet.
    [[nodiscard]] bool isSearching() const { return searchDelay_.isActive() || asked_ != nullptr; }

    // What is searched for, trimmed; empty without a search.
    [[nodiscard]] const std::string& debouncedQuery() const { return debouncedQuery_; }

    // Archives that the last search couldn't ask: nothing is known of their mail.
    [[nodiscard]] const std::vector<std::string>& rootsNotSearched() const { return rootsNotSearched_; }

    // Of archives whose mail the last search couldn't find, since it isn't in their search index yet.
    [[nodiscard]] const std::vector<std::string>& rootsNotPrepared() const { return rootsNotPrepared_; }

    [[nodiscard]] const LibrarySelection& selection() const { return selection_; }

    // A row of the list that was clicked.
    void selectLibraryRow(EntryPosition entry, SelectionKeys keys);
    void selectFirstVisibleIfNeeded();
    void selectAllVisible();

  Q_SIGNALS:
    void filtersChanged();
    void searchChanged();
    void listChanged();
    void selectionChanged();

  private:
    [[nodiscard]] LibraryListInputs inputs() const { return {index_.index(), filters_, order_}; }

    template <class Value>
    void assign(Value& field, Value value);
    // Mail or texts have come since the answer: what it let through isn't all any more.
    void repeatSearch();
    void startSearch();
    void applySearch(ArchiveSearchResult found);
    void setMatches(std::shared_ptr<const SharedTextSet> ids);
    void refresh();
    void publish(SharedLibraryList list);
    void setSelection(LibrarySelection selection);

    ModelContext& context_;
    LibraryIndexFlow& index_;
    BodyTexts& texts_;
    LibraryFilters filters_;
    LibraryOrder order_ = LibraryOrder::newestFirst;
    SharedLibraryList list_;
    LibrarySelection selection_;
    std::string searchText_;
    std::string debouncedQuery_;
    std::vector<std::string> rootsNotSearched_;
    std::vector<std::string> rootsNotPrepared_;
    std::shared_ptr<const std::string> asked_; // the search whose answer is wanted; null without one
    QTimer searchDelay_;
    TaskSlot listTask_;
};

} // namespace corvane
