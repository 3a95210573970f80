#include "screens/library/rows/library_row_selection.h"

#include <optional>
#include <utility>

namespace corvane {

LibraryRowSelection::LibraryRowSelection(LibraryListFlow& flow, LibraryRowModel& rows, QObject* parent)
  : ListSelection(parent)
  , flow_(flow)
  , rows_(rows) {}

int LibraryRowSelection::count() const {
    const LibrarySelection& shown = rows_.shownSelection();
    return shown.librarySelectedIDs().empty() ? (shown.selectedID() ? 1 : 0)
                                              : static_cast<int>(shown.librarySelectedIDs().size());
}

bool LibraryRowSelection::isSelected(int row) const {
    const LibraryRow* content = rows_.rowAt(row);
    return content != nullptr && rows_.shownSelection().libraryRowSelected(content->entry);
}

// The model may have gone on to another index, of which the rows are being made.
void LibraryRowSelection::choose(int row, SelectionKeys keys) {
    const int chosen = within(row);
    const ArchivedEntry* entry = rows_.entryAt(chosen);
    if (entry == nullptr) return;
    const LibraryList& present = *flow_.list();
    const bool isSame = present.inputs.index == rows_.content().list->inputs.index;
    const auto position =
        isSame ? std::optional(rows_.rowAt(chosen)->entry) : present.index().position(entry->id());
    setCurrent(chosen);
    if (position) flow_.selectLibraryRow(*position, keys);
}

void LibraryRowSelection::select(int row) {
    choose(row, {});
}

void LibraryRowSelection::extendTo(int row) {
    choose(row, {.shift = true});
}

void LibraryRowSelection::toggle(int row) {
    choose(row, {.command = true});
}

void LibraryRowSelection::selectAll() {
    flow_.selectAllVisible();
}

void LibraryRowSelection::remap(const std::vector<int>& newRows, int rowCount) {
    const int earlier = currentRow();
    setRowCount(rowCount);
    if (earlier < 0 || std::cmp_greater_equal(earlier, newRows.size())) return setCurrent(-1);
    int next = -1;
    for (auto row = static_cast<std::size_t>(earlier); row < newRows.size() && next < 0; ++row)
        next = newRows[row];
    const bool stayed = next >= 0 && next == newRows[static_cast<std::size_t>(earlier)];
    setCurrent(next);
    if (!stayed && rowCount > 0 && !flow_.selection().selectedID()) select(next < 0 ? rowCount - 1 : next);
}

void LibraryRowSelection::showSelected() {
    const auto shown = rows_.shownSelection().selectedID();
    const LibraryRow* current = rows_.rowAt(currentRow());
    if (!shown || (current != nullptr && current->entry == *shown)) return;
    setCurrent(rows_.rowOf(*shown));
}

std::vector<EntryPosition> LibraryRowSelection::entries() const {
    const LibrarySelection& shown = rows_.shownSelection();
    if (!shown.librarySelectedIDs().empty()) return shown.librarySelectedIDs();
    return shown.selectedID() ? std::vector{*shown.selectedID()} : std::vector<EntryPosition>();
}

} // namespace corvane
