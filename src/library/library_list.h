// What the library's list shows under its filters, with the menus beside it: one value that belongs together.
// Immutable once made, any thread.
#pragma once

#include <memory>
#include <vector>

#include "library/filter_options.h"
#include "library/library_filters.h"
#include "library/library_index.h"

namespace corvane {

// Equal inputs have equal lists.
struct LibraryListInputs {
    SharedLibraryIndex index; // never null
    LibraryFilters filters{};
    LibraryOrder order = LibraryOrder::newestFirst;

    friend bool operator==(const LibraryListInputs&, const LibraryListInputs&) = default;
};

struct LibraryList {
    LibraryListInputs inputs;
    VisibleEntries entries;
    VisibleGroups groups;
    std::vector<LibraryAccountFilterOption> accountOptions;
    std::vector<LibraryLocationFilterOption> locationOptions;

    [[nodiscard]] const ArchiveLibraryIndex& index() const { return *inputs.index; }

    // Linear in the entries unless there is no filter.
    static std::shared_ptr<const LibraryList> make(LibraryListInputs inputs);
};

using SharedLibraryList = std::shared_ptr<const LibraryList>;

} // namespace corvane
