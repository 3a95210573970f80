// How one list of rows becomes the next, row by row. Pure, n log n at most and linear where rows keep their
// order; made in the background for large lists and applied on the main thread (RecordListModel).
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "text/shared_text.h"

namespace corvane {

struct RowRun {
    int first = 0;
    int count = 0;

    friend bool operator==(const RowRun&, const RowRun&) = default;
};

struct RowChanges {
    // There are no runs: all rows that stay show others (RowChangeRules).
    bool isReset = false;
    std::vector<RowRun> removed;  // rows of the earlier list, in order
    std::vector<RowRun> inserted; // rows of the next list, in order
    std::vector<RowRun> changed;  // rows of the next list that stayed and show something else, in order
    std::vector<int> newRows;     // the next row of each earlier one, -1 when it has gone

    [[nodiscard]] bool isEmpty() const {
        return !isReset && removed.empty() && inserted.empty() && changed.empty();
    }

    [[nodiscard]] std::size_t runCount() const { return removed.size() + inserted.size() + changed.size(); }
};

// When a list is shown anew instead of changed by row.
struct RowChangeRules {
    // With more runs of rows that go, come or change.
    std::size_t mostRuns = std::numeric_limits<std::size_t>::max();
    // When rows that stay change their order among each other; else as few of them as possible are removed
    // and inserted again.
    bool resetsOnNewOrder = false;
};

// For lists of any length, where a view costs more by each run than by a reset.
inline constexpr RowChangeRules largeListRules{.mostRuns = 200, .resetsOnNewOrder = true};

namespace row_changes_detail {

inline constexpr int gone = -1;

void addRow(std::vector<RowRun>& runs, int row);

// By which a key is looked up. Keys themselves are compared first as they are: texts that are shared are
// equal at once.
template <class Key>
const Key& hashable(const Key& key) { // NOLINTNEXTLINE(bugprone-return-const-ref-from-parameter): not kept
    return key;
}

inline std::string_view hashable(const SharedText& key) {
    return key.view();
}

// Whether the rows that stay have the order of before.
bool keepsOrder(const std::vector<int>& newRows);

// `newRows` with `gone` for the rows that can't stay in their order, as few of them as possible.
std::vector<int> longestInOrder(const std::vector<int>& newRows);

// `staying` has the next row of each earlier one that isn't moved.
template <class IsChanged>
void addRuns(RowChanges& changes, const std::vector<int>& staying, std::size_t nextCount,
             const IsChanged& isChanged) {
    int next = 0;
    const auto insertUpTo = [&](int end) {
        for (; next < end; ++next) addRow(changes.inserted, next);
    };
    for (std::size_t row = 0; row < staying.size(); ++row) {
        const int newRow = staying[row];
        if (newRow == gone) {
            addRow(changes.removed, static_cast<int>(row));
            continue;
        }
        insertUpTo(newRow);
        if (isChanged(row, static_cast<std::size_t>(newRow))) addRow(changes.changed, newRow);
        next = newRow + 1;
    }
    insertUpTo(static_cast<int>(nextCount));
}

// Most changes are small: only what lies between the equal ends is looked up.
template <class Records, class KeyOf>
std::vector<int> newRowsOf(const Records& before, const Records& after, const KeyOf& keyOf) {
    const std::size_t shorter = std::min(before.size(), after.size());
    const auto isSame = [&](std::size_t left, std::size_t right) {
        return keyOf(before[left]) == keyOf(after[right]);
    };
    std::size_t head = 0;
    while (head < shorter && isSame(head, head)) ++head;
    std::size_t tail = 0;
    while (tail < shorter - head && isSame(before.size() - 1 - tail, after.size() - 1 - tail)) ++tail;

    std::vector<int> newRows(before.size(), gone);
    for (std::size_t row = 0; row < head; ++row) newRows[row] = static_cast<int>(row);
    for (std::size_t step = 1; step <= tail; ++step)
        newRows[before.size() - step] = static_cast<int>(after.size() - step);
    if (head + tail == before.size() || head + tail == after.size()) return newRows;

    std::unordered_map<std::decay_t<decltype(hashable(keyOf(after[0])))>, int> rowByKey;
    rowByKey.reserve(after.size() - head - tail);
    for (std::size_t row = head; row < after.size() - tail; ++row)
        rowByKey.emplace(hashable(keyOf(after[row])), static_cast<int>(row));
    for (std::size_t row = head; row < before.size() - tail; ++row) {
        const auto found = rowByKey.find(hashable(keyOf(before[row])));
        if (found != rowByKey.end()) newRows[row] = found->second;
    }
    return newRows;
}

} // namespace row_changes_detail

// `keyOf` gives a key, unique in each list, that is hashable or a SharedText and valid as long as the lists
// are. Rows that stay and for which `showsTheSame` is false are changed ones.
template <class Records, class KeyOf, class ShowsTheSame = std::equal_to<>>
RowChanges rowChanges(const Records& before, const Records& after, const KeyOf& keyOf,
                      const ShowsTheSame& showsTheSame = {}, const RowChangeRules& rules = {}) {
    using namespace row_changes_detail;
    RowChanges changes;
    changes.newRows = newRowsOf(before, after, keyOf);
    const auto isChanged = [&](std::size_t row, std::size_t newRow) {
        return !showsTheSame(before[row], after[newRow]);
    };
    const bool isInOrder = keepsOrder(changes.newRows);
    if (isInOrder || !rules.resetsOnNewOrder) {
        const std::vector<int> longest = isInOrder ? std::vector<int>() : longestInOrder(changes.newRows);
        addRuns(changes, isInOrder ? changes.newRows : longest, after.size(), isChanged);
        if (changes.runCount() <= rules.mostRuns) return changes;
    }
    RowChanges reset;
    reset.isReset = true;
    reset.newRows = std::move(changes.newRows);
    return reset;
}

} // namespace corvane
