// How commands choose archived mail: the filters of the library's list, as options.
#pragma once

#include <optional>
#include <string>

#include <CLI/App.hpp>

#include "cli/session.h"
#include "library/library_filters.h"
#include "library/library_index.h"

namespace corvane::cli {

// Absent fields let everything pass; an empty text is a value.
struct LibraryFilterOptions {
    std::optional<std::string> account; // its key
    std::optional<std::string> location;
    std::optional<std::string> mailbox;
    std::optional<YearSpan> years;
    std::string query;

    // The account, the location, the mailbox and the years. The query is a search; see libraryFilters().
    static void addTo(CLI::App& command, LibraryFilterOptions& options);
    static void addQueryTo(CLI::App& command, LibraryFilterOptions& options);
};

// Makes a live load of the library, and its index.
SharedLibraryIndex loadLibraryIndex(Session& session);

// Throws CommandFailure, with the known ones, for an account or a mailbox that no archived mail is of: an
// empty list would look as if there were no mail in it.
void requireKnown(const ArchiveLibraryIndex& index, const LibraryFilterOptions& options);

// The filters of these options, after a search where they have a query. The library must be loaded. Archives
// that couldn't be searched are named on standard error.
LibraryFilters libraryFilters(Session& session, const LibraryFilterOptions& options);

} // namespace corvane::cli
