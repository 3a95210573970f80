// Lists of entries gathered by thread, in the order in which the threads first appear. Held as numbers in two
// flat arrays: a list of a million entries has two million small allocations less. Pure values, any thread.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "library/threads/thread_keys.h"
#include "records/archived/archive_records.h"

namespace corvane {

// One thread of a list; not one subject.
struct LibrarySubjectGroup {
    std::uint32_t first = 0; // of its members in `SubjectGroups::members`
    std::uint32_t count = 0;
    EntryPosition latest = 0; // the first of the members that have the greatest date
};

struct SubjectGroups {
    std::vector<EntryPosition> members; // of all groups, each in the order of the list
    std::vector<LibrarySubjectGroup> groups;

    [[nodiscard]] std::span<const EntryPosition> entries(const LibrarySubjectGroup& group) const {
        return std::span(members).subspan(group.first, group.count);
    }
};

// Makes groups of any number of lists over one set of entries.
class SubjectGrouper {
  public:
    // Both must outlive the grouper; `roots` are those of `threadRoots`.
    SubjectGrouper(const std::vector<ArchivedEntry>& entries, const std::vector<EntryPosition>& roots);

    // Appends the groups of a list.
    void append(std::span<const EntryPosition> list, SubjectGroups& to);

  private:
    const std::vector<ArchivedEntry>& entries_;
    const std::vector<EntryPosition>& roots_;
    std::vector<std::uint32_t> groupOfRoot_; // in the list at work
};

// Whether `a` was written before `b`; mail without a date before all other.
bool isEarlier(const ArchivedEntry& a, const ArchivedEntry& b);

} // namespace corvane
