#include "library/library_filters.h"

#include <algorithm>
#include <iterator>

#include "records/archived/counted_bytes.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

class EntryTest {
  public:
    EntryTest(const ArchiveLibraryIndex& index, const LibraryFilters& filters)
      : index_(index)
      , filters_(filters) {
        if (filters.libraryAccountFilter) account_ = index.accountNumber(*filters.libraryAccountFilter);
    }

    bool operator()(EntryPosition position) const {
        const ArchivedEntry& entry = index_.entry(position);
        return fits(filters_.libraryLocationFilter, entry.locationRootPath) &&
               (!filters_.libraryAccountFilter || account_ == index_.accountOf()[position]) &&
               fits(filters_.libraryMailboxFilter, entry.record.mailbox) &&
               (filters_.matchedIDs == nullptr || filters_.matchedIDs->contains(entry.record.id)) &&
               (!filters_.years || isWithin(*filters_.years, entry.record.date));
    }

  private:
    static bool fits(const std::optional<std::string>& filter, const SharedText& value) {
        return !filter || value == *filter;
    }

    static bool isWithin(const YearSpan& years, const std::optional<Date>& date) {
        if (!date) return false;
        const std::int64_t year = localYear(*date);
        return years.first <= year && year <= years.last;
    }

    const ArchiveLibraryIndex& index_;
    const LibraryFilters& filters_;
    std::optional<std::uint32_t> account_; // that the filter names
};

std::vector<EntryPosition> passing(const ArchiveLibraryIndex& index, std::span<const EntryPosition> entries,
                                   const LibraryFilters& filters) {
    std::vector<EntryPosition> passed;
    std::ranges::copy_if(entries, std::back_inserter(passed), EntryTest(index, filters));
    return passed;
}

bool isByAccountAlone(const LibraryFilters& filters) {
    return filters.libraryAccountFilter && !filters.libraryLocationFilter && !filters.libraryMailboxFilter &&
           filters.matchedIDs == nullptr && !filters.years;
}

} // namespace

bool entryMatchesCurrentFilters(const ArchiveLibraryIndex& index, EntryPosition position,
                                const LibraryFilters& filters) {
    return EntryTest(index, filters)(position);
}

VisibleEntries visibleEntries(const SharedLibraryIndex& index, const LibraryFilters& filters,
                              LibraryOrder order) {
    if (filters == LibraryFilters()) return {index, index->sorted(order)};
    if (isByAccountAlone(filters))
        return {index, index->sortedOfAccount(order, *filters.libraryAccountFilter)};
    const auto source = filters.libraryAccountFilter
                            ? index->sortedOfAccount(order, *filters.libraryAccountFilter)
                            : index->sorted(order);
    return VisibleEntries(passing(*index, source, filters));
}

VisibleGroups visibleGroups(const SharedLibraryIndex& index, const LibraryFilters& filters,
                            LibraryOrder order, const VisibleEntries& entries) {
    if (filters == LibraryFilters()) return {index, index->subjectGroups(order)};
    if (isByAccountAlone(filters))
        return {index, index->subjectGroupsOfAccount(order, *filters.libraryAccountFilter)};
    SubjectGroups groups;
    SubjectGrouper(index->entries(), index->threadRoots()).append(entries.entries(), groups);
    return VisibleGroups(std::move(groups));
}

std::string groupKey(const ArchiveLibraryIndex& index, const LibrarySubjectGroup& group) {
    return index.threadKey(group.latest);
}

const SharedText& groupSubject(const ArchiveLibraryIndex& index, const GroupsView& view,
                               const LibrarySubjectGroup& group) {
    return index.entry(view.entries(group).front()).record.subject;
}

std::int64_t groupBytes(const ArchiveLibraryIndex& index, const GroupsView& view,
                        const LibrarySubjectGroup& group) {
    std::int64_t bytes = 0;
    for (const EntryPosition position : view.entries(group))
        bytes += countedBytes(index.entry(position).record);
    return bytes;
}

std::vector<LibraryAccountFilterOption> accountFilterOptions(const ArchiveLibraryIndex& index,
                                                             const LibraryFilters& filters) {
    if (!filters.libraryLocationFilter) return index.accountOptions();
    LibraryFilters others;
    others.libraryLocationFilter = filters.libraryLocationFilter;
    const auto source = passing(index, index.sorted(LibraryOrder::newestFirst), others);
    return accountOptions(source, index.accountOf(), index.accounts());
}

std::vector<LibraryLocationFilterOption> locationFilterOptions(const ArchiveLibraryIndex& index,
                                                               const LibraryFilters& filters) {
    if (!filters.libraryAccountFilter && !filters.libraryMailboxFilter) return index.locationOptions();
    LibraryFilters others;
    others.libraryAccountFilter = filters.libraryAccountFilter;
    others.libraryMailboxFilter = filters.libraryMailboxFilter;
    const auto source = passing(index, index.sorted(LibraryOrder::newestFirst), others);
    return locationOptions(source, index.entries(), index.input().archiveLocations);
}

} // namespace corvane
