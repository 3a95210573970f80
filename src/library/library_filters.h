// Which entries the library's list shows under its filters, and in which groups. Pure functions on an index;
// common cases are answered without looking at an entry, the others are linear. Any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "library/filter_options.h"
#include "library/library_index.h"
#include "text/shared_text.h"

namespace corvane {

// Local calendar years, both included.
struct YearSpan {
    std::int64_t first = 0;
    std::int64_t last = 0;

    friend bool operator==(const YearSpan&, const YearSpan&) = default;
};

// Absent fields let everything pass; an empty text is a value like any other.
struct LibraryFilters {
    std::optional<std::string> libraryLocationFilter{}; // a root
    std::optional<std::string> libraryAccountFilter{};  // an account key
    std::optional<std::string> libraryMailboxFilter{};
    std::shared_ptr<const SharedTextSet>
        matchedIDs{};                // record ids that a search found; null without a search
    std::optional<YearSpan> years{}; // mail without a date is in none

    friend bool operator==(const LibraryFilters&, const LibraryFilters&) = default;
};

bool entryMatchesCurrentFilters(const ArchiveLibraryIndex& index, EntryPosition position,
                                const LibraryFilters& filters);

// A list that either belongs to an index or was made for the filters. Valid as long as it lives.
class VisibleEntries {
  public:
    VisibleEntries() = default;

    VisibleEntries(SharedLibraryIndex index, std::span<const EntryPosition> entries)
      : owner_(std::move(index))
      , entries_(entries) {}

    explicit VisibleEntries(std::vector<EntryPosition> entries) {
        const auto own = std::make_shared<const std::vector<EntryPosition>>(std::move(entries));
        entries_ = *own;
        owner_ = own;
    }

    [[nodiscard]] std::span<const EntryPosition> entries() const { return entries_; }

  private:
    std::shared_ptr<const void> owner_;
    std::span<const EntryPosition> entries_;
};

VisibleEntries visibleEntries(const SharedLibraryIndex& index, const LibraryFilters& filters,
                              LibraryOrder order);

// The same for groups. Those of a filtered list hold just the members that passed.
class VisibleGroups {
  public:
    VisibleGroups() = default;

    VisibleGroups(SharedLibraryIndex index, GroupsView groups)
      : owner_(std::move(index))
      , view_(groups) {}

    explicit VisibleGroups(SubjectGroups groups) {
        const auto own = std::make_shared<const SubjectGroups>(std::move(groups));
        view_ = {own->groups, own->members};
        owner_ = own;
    }

    [[nodiscard]] const GroupsView& view() const { return view_; }

  private:
    std::shared_ptr<const void> owner_;
    GroupsView view_;
};

// `entries` are those that are visible under the same filters and order.
VisibleGroups visibleGroups(const SharedLibraryIndex& index, const LibraryFilters& filters,
                            LibraryOrder order, const VisibleEntries& entries);

// The key of a group, and its subject, which is that of its first member in the list.
std::string groupKey(const ArchiveLibraryIndex& index, const LibrarySubjectGroup& group);
const SharedText& groupSubject(const ArchiveLibraryIndex& index, const GroupsView& view,
                               const LibrarySubjectGroup& group);
std::int64_t groupBytes(const ArchiveLibraryIndex& index, const GroupsView& view,
                        const LibrarySubjectGroup& group);

// What the menus offer: accounts of the chosen location's mail, locations of the chosen account's and
// mailbox's.
std::vector<LibraryAccountFilterOption> accountFilterOptions(const ArchiveLibraryIndex& index,
                                                             const LibraryFilters& filters);
std::vector<LibraryLocationFilterOption> locationFilterOptions(const ArchiveLibraryIndex& index,
                                                               const LibraryFilters& filters);

} // namespace corvane
