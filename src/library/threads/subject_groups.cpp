#include "library/threads/subject_groups.h"

#include <limits>

namespace corvane {

namespace {

constexpr std::uint32_t noGroup = std::numeric_limits<std::uint32_t>::max();

} // namespace

bool isEarlier(const ArchivedEntry& a, const ArchivedEntry& b) {
    return a.record.date.value_or(Date::min()) < b.record.date.value_or(Date::min());
}

SubjectGrouper::SubjectGrouper(const std::vector<ArchivedEntry>& entries,
                               const std::vector<EntryPosition>& roots)
  : entries_(entries)
  , roots_(roots)
  , groupOfRoot_(entries.size(), noGroup) {}

void SubjectGrouper::append(std::span<const EntryPosition> list, SubjectGroups& to) {
    const std::size_t firstGroup = to.groups.size();
    for (const EntryPosition position : list) {
        std::uint32_t& group = groupOfRoot_[roots_[position]];
        if (group == noGroup) {
            group = static_cast<std::uint32_t>(to.groups.size());
            to.groups.push_back({.latest = position});
        }
        LibrarySubjectGroup& made = to.groups[group];
        ++made.count;
        if (isEarlier(entries_[made.latest], entries_[position])) made.latest = position;
    }
    auto next = static_cast<std::uint32_t>(to.members.size());
    to.members.resize(to.members.size() + list.size());
    for (std::size_t group = firstGroup; group < to.groups.size(); ++group) {
        LibrarySubjectGroup& made = to.groups[group];
        made.first = next;
        next += made.count;
        made.count = 0;
    }
    for (const EntryPosition position : list) {
        LibrarySubjectGroup& made = to.groups[groupOfRoot_[roots_[position]]];
        to.members[made.first + made.count++] = position;
    }
    for (const EntryPosition position : list) groupOfRoot_[roots_[position]] = noGroup;
}

} // namespace corvane
