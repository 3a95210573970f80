#include "screens/lists/row_changes.h"

namespace corvane::row_changes_detail {

void addRow(std::vector<RowRun>& runs, int row) {
    if (!runs.empty() && runs.back().first + runs.back().count == row) {
        ++runs.back().count;
    } else {
        runs.push_back({row, 1});
    }
}

bool keepsOrder(const std::vector<int>& newRows) {
    int latest = gone;
    for (const int row : newRows) {
        if (row == gone) continue;
        if (row <= latest) return false;
        latest = row;
    }
    return true;
}

// A longest ascending subsequence, by the smallest end of those of each length.
std::vector<int> longestInOrder(const std::vector<int>& newRows) {
    std::vector<std::size_t> ends;
    std::vector<std::size_t> earlier(newRows.size());
    for (std::size_t row = 0; row < newRows.size(); ++row) {
        if (newRows[row] == gone) continue;
        const auto end =
            std::lower_bound(ends.begin(), ends.end(), newRows[row],
                             [&](std::size_t known, int newRow) { return newRows[known] < newRow; });
        earlier[row] = end == ends.begin() ? row : *(end - 1);
        if (end == ends.end()) {
            ends.push_back(row);
        } else {
            *end = row;
        }
    }
    std::vector<int> staying(newRows.size(), gone);
    std::size_t row = ends.back();
    for (std::size_t left = ends.size(); left > 0; --left, row = earlier[row]) staying[row] = newRows[row];
    return staying;
}

} // namespace corvane::row_changes_detail
