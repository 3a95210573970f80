#include "screens/library/rows/library_rows.h"

#include <optional>
#include <unordered_set>

namespace corvane {

namespace {

using Kind = LibraryRow::Kind;

std::unordered_set<EntryPosition> openRoots(const ArchiveLibraryIndex& index, const OpenThreads& open) {
    std::unordered_set<EntryPosition> roots;
    for (const std::string& name : open) {
        if (const auto position = index.position(name)) roots.insert(index.threadRoots()[*position]);
    }
    return roots;
}

// A row that can be found again in another list: which mail it is of, in the positions of the later index,
// and whether as a thread.
struct KnownRow {
    std::uint64_t key = 0;
    const LibraryRow* row = nullptr;
    std::uint32_t memberCount = 0;
};

constexpr std::uint64_t notInLater = std::uint64_t(1) << 62U;

std::vector<KnownRow> knownRows(const RowsOfList& from, const ArchiveLibraryIndex& later) {
    const ArchiveLibraryIndex& index = from.list->index();
    const bool isSame = &index == &later;
    std::vector<KnownRow> known;
    known.reserve(from.rows->size());
    for (const LibraryRow& row : *from.rows) {
        const bool isThread = row.kind == Kind::thread;
        const EntryPosition mail = isThread ? index.threadRoots()[row.entry] : row.entry;
        const auto place = isSame ? std::optional(mail) : later.position(index.entry(mail).id());
        const std::uint64_t key = place ? std::uint64_t(*place) : notInLater + mail;
        known.push_back({key * 2 + (isThread ? 1 : 0), &row,
                         isThread ? from.list->groups.view().groups[row.group].count : 0});
    }
    return known;
}

bool showsTheSame(const KnownRow& before, const KnownRow& after) {
    return before.row->kind == after.row->kind && before.row->isOpen == after.row->isOpen &&
           before.row->isLast == after.row->isLast && before.row->entry == after.row->entry &&
           before.memberCount == after.memberCount;
}

} // namespace

std::string threadName(const ArchiveLibraryIndex& index, EntryPosition entry) {
    return index.entry(index.threadRoots()[entry]).id();
}

LibraryRows memberRows(const LibraryList& list, std::uint32_t group) {
    const GroupsView& view = list.groups.view();
    LibraryRows rows;
    for (const EntryPosition entry : view.entries(view.groups[group]))
        rows.push_back({entry, group, Kind::member});
    if (!rows.empty()) rows.back().isLast = true;
    return rows;
}

SharedLibraryRows libraryRows(const LibraryList& list, const OpenThreads& open) {
    const auto roots = openRoots(list.index(), open);
    const auto groups = list.groups.view().groups;
    auto rows = std::make_shared<LibraryRows>();
    rows->reserve(groups.size());
    for (std::uint32_t number = 0; number < groups.size(); ++number) {
        const LibrarySubjectGroup& group = groups[number];
        const bool isThread = group.count > 1;
        const bool isOpen = isThread && roots.contains(list.index().threadRoots()[group.latest]);
        rows->push_back({group.latest, number, isThread ? Kind::thread : Kind::single, isOpen});
        if (!isOpen) continue;
        const LibraryRows members = memberRows(list, number);
        rows->insert(rows->end(), members.begin(), members.end());
    }
    return rows;
}

RowChanges libraryRowChanges(const RowsOfList& before, const RowsOfList& after) {
    const ArchiveLibraryIndex& later = after.list->index();
    const bool isSameIndex = &before.list->index() == &later;
    return rowChanges(
        knownRows(before, later), knownRows(after, later), [](const KnownRow& row) { return row.key; },
        [isSameIndex](const KnownRow& left, const KnownRow& right) {
            return isSameIndex && showsTheSame(left, right);
        },
        largeListRules);
}

} // namespace corvane
