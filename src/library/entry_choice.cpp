#include "library/entry_choice.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>

namespace corvane {

namespace {

// By position, those of the list that are named.
std::vector<bool> marked(const ArchiveLibraryIndex& index, std::span<const EntryPosition> list,
                         const std::vector<EntryPosition>* named) {
    std::vector<bool> marks(index.size(), named == nullptr);
    if (named != nullptr) {
        for (const EntryPosition position : *named) marks[position] = true;
    }
    std::vector<bool> both(index.size(), false);
    for (const EntryPosition position : list) both[position] = marks[position];
    return both;
}

void addThreads(const ArchiveLibraryIndex& index, std::vector<bool>& marks) {
    std::vector<bool> threads(index.size(), false); // by root
    const std::vector<EntryPosition>& roots = index.threadRoots();
    for (std::size_t position = 0; position < marks.size(); ++position) {
        if (marks[position]) threads[roots[position]] = true;
    }
    for (std::size_t position = 0; position < marks.size(); ++position) {
        if (threads[roots[position]]) marks[position] = true;
    }
}

} // namespace

std::vector<EntryPosition> chosenEntries(const SharedLibraryIndex& index, const LibraryFilters& filters,
                                         const std::vector<EntryPosition>* named, bool wholeThreads) {
    const VisibleEntries visible = visibleEntries(index, filters, LibraryOrder::oldestFirst);
    std::vector<bool> marks = marked(*index, visible.entries(), named);
    if (wholeThreads) addThreads(*index, marks);
    std::vector<EntryPosition> chosen;
    std::ranges::copy_if(index->sorted(LibraryOrder::oldestFirst), std::back_inserter(chosen),
                         [&](EntryPosition position) { return marks[position]; });
    return chosen;
}

} // namespace corvane
