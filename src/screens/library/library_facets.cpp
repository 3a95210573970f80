#include "screens/library/library_facets.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "records/archived/counted_bytes.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

// A date that nobody can have meant would make a strip of thousands of years.
constexpr std::int64_t mostYears = 200;

void addYears(LibraryFacets& facets, const LibraryList& list) {
    LibraryFilters filters = list.inputs.filters;
    filters.years.reset();
    const VisibleEntries entries = visibleEntries(list.inputs.index, filters, list.inputs.order);
    std::map<std::int64_t, YearOfMail> years;
    for (const EntryPosition position : entries.entries()) {
        const ArchivedEmailRecord& record = list.index().entry(position).record;
        if (!record.date) {
            ++facets.undated;
            continue;
        }
        YearOfMail& year = years[localYear(*record.date)];
        ++year.count;
        year.bytes += countedBytes(record);
    }
    if (years.empty()) return;
    const std::int64_t last = years.rbegin()->first;
    const std::int64_t first = std::max(years.begin()->first, last - mostYears + 1);
    for (std::int64_t number = first; number <= last; ++number) {
        YearOfMail year = years[number];
        year.year = number;
        facets.years.push_back(year);
    }
}

void addMailboxes(LibraryFacets& facets, const LibraryList& list) {
    LibraryFilters filters = list.inputs.filters;
    filters.libraryMailboxFilter.reset();
    const VisibleEntries entries = visibleEntries(list.inputs.index, filters, list.inputs.order);
    std::unordered_map<std::string_view, std::int64_t> counts;
    for (const EntryPosition position : entries.entries())
        ++counts[list.index().entry(position).record.mailbox.view()];
    // What is chosen stays among the choices.
    if (const auto& chosen = list.inputs.filters.libraryMailboxFilter) counts.try_emplace(*chosen, 0);
    for (const auto& [mailbox, count] : counts) facets.mailboxes.push_back({std::string(mailbox), count});
    std::ranges::sort(facets.mailboxes, [](const MailboxOption& a, const MailboxOption& b) {
        return a.count != b.count ? a.count > b.count : a.mailbox < b.mailbox;
    });
}

} // namespace

LibraryFacets LibraryFacets::of(const LibraryList& list) {
    LibraryFacets facets;
    for (const EntryPosition position : list.entries.entries())
        facets.bytes += countedBytes(list.index().entry(position).record);
    addYears(facets, list);
    addMailboxes(facets, list);
    return facets;
}

} // namespace corvane
