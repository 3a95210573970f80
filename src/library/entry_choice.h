// Which entries a command is to act on: those that pass some filters, and of their threads all the others
// where that is wanted. Pure, any thread.
#pragma once

#include <vector>

#include "library/library_filters.h"
#include "library/library_index.h"

namespace corvane {

// `named` narrows it to these; null for no narrowing. The oldest first.
std::vector<EntryPosition> chosenEntries(const SharedLibraryIndex& index, const LibraryFilters& filters,
                                         const std::vector<EntryPosition>* named, bool wholeThreads);

} // namespace corvane
