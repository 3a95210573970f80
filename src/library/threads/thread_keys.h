// Conversations among archived mail: entries that have one Message-ID, that name one another or one absent
// mail in their references, or that have one subject. Pure, near linear in entries and references, any
// thread.
#pragma once

#include <cstdint>
#include <memory>
#include <numeric>
#include <stop_token>
#include <string_view>
#include <vector>

#include "records/archived/archive_records.h"

namespace corvane {

// The place of an entry in the list of all entries.
using EntryPosition = std::uint32_t;

// Disjoint sets of positions. The root of the first position's set is that of both.
class ThreadUnionFind {
  public:
    explicit ThreadUnionFind(std::size_t count)
      : parent_(count) {
        std::iota(parent_.begin(), parent_.end(), EntryPosition{0});
    }

    EntryPosition root(EntryPosition position) {
        EntryPosition top = position;
        while (parent_[top] != top) top = parent_[top];
        while (parent_[position] != top) {
            const EntryPosition next = parent_[position];
            parent_[position] = top;
            position = next;
        }
        return top;
    }

    void unite(EntryPosition first, EntryPosition second) {
        const EntryPosition top = root(first);
        parent_[root(second)] = top;
    }

  private:
    std::vector<EntryPosition> parent_;
};

// By position, the entry that names the thread; of a thread of one, the entry itself. Empty after a stop.
std::vector<EntryPosition> threadRoots(const std::vector<ArchivedEntry>& entries,
                                       const std::stop_token& stop = {});

} // namespace corvane
