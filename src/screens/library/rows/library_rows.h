// The rows of the library's list: one a thread or a single mail, and below an open thread its members. Pure,
// any thread; linear in the list, so made in the background.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "library/library_list.h"
#include "screens/lists/row_changes.h"

namespace corvane {

struct LibraryRow {
    enum class Kind : std::uint8_t { single, thread, member };

    EntryPosition entry = 0; // the latest of a thread
    std::uint32_t group = 0; // in the list's groups
    Kind kind = Kind::single;
    bool isOpen = false; // a thread whose members stand below it
    bool isLast = false; // of the members
};

using LibraryRows = std::vector<LibraryRow>;
using SharedLibraryRows = std::shared_ptr<const LibraryRows>;

// Ids of entries that name their threads, one each.
using OpenThreads = std::set<std::string, std::less<>>;

// By which a thread is known to be open, whatever the list.
std::string threadName(const ArchiveLibraryIndex& index, EntryPosition entry);

SharedLibraryRows libraryRows(const LibraryList& list, const OpenThreads& open);

// The members of a thread as rows, in the order of the list.
LibraryRows memberRows(const LibraryList& list, std::uint32_t group);

// A list with its rows.
struct RowsOfList {
    SharedLibraryList list;
    SharedLibraryRows rows;
};

RowChanges libraryRowChanges(const RowsOfList& before, const RowsOfList& after);

} // namespace corvane
