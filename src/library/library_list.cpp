#include "library/library_list.h"

#include <utility>

namespace corvane {

SharedLibraryList LibraryList::make(LibraryListInputs inputs) {
    auto list = std::make_shared<LibraryList>();
    const auto& [index, filters, order] = list->inputs = std::move(inputs);
    list->entries = visibleEntries(index, filters, order);
    list->groups = visibleGroups(index, filters, order, list->entries);
    list->accountOptions = accountFilterOptions(*index, filters);
    list->locationOptions = locationFilterOptions(*index, filters);
    return list;
}

} // namespace corvane
