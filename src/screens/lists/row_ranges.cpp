#include "screens/lists/row_ranges.h"

#include <algorithm>

namespace corvane {

void RowRanges::add(int first, int end) {
    if (first >= end) return;
    const auto begin = std::lower_bound(ranges_.begin(), ranges_.end(), first,
                                        [](const Range& range, int row) { return range.end < row; });
    auto behind = begin;
    for (; behind != ranges_.end() && behind->first <= end; ++behind) {
        first = std::min(first, behind->first);
        end = std::max(end, behind->end);
    }
    ranges_.insert(ranges_.erase(begin, behind), Range{first, end});
}

void RowRanges::remove(int first, int end) {
    if (first >= end) return;
    std::vector<Range> kept;
    kept.reserve(ranges_.size() + 1);
    for (const Range& range : ranges_) {
        if (range.first < std::min(range.end, first))
            kept.push_back({range.first, std::min(range.end, first)});
        if (std::max(range.first, end) < range.end) kept.push_back({std::max(range.first, end), range.end});
    }
    ranges_ = std::move(kept);
}

bool RowRanges::contains(int row) const {
    const auto range = std::upper_bound(ranges_.begin(), ranges_.end(), row,
                                        [](int value, const Range& each) { return value < each.end; });
    return range != ranges_.end() && range->first <= row;
}

int RowRanges::count() const {
    int count = 0;
    for (const Range& range : ranges_) count += range.end - range.first;
    return count;
}

RowRanges RowRanges::mapped(const std::vector<int>& newRows) const {
    std::vector<int> rows;
    for (const Range& range : ranges_) {
        for (int row = range.first; row < range.end && row < static_cast<int>(newRows.size()); ++row) {
            const int newRow = newRows[static_cast<std::size_t>(row)];
            if (newRow >= 0) rows.push_back(newRow);
        }
    }
    if (!std::is_sorted(rows.begin(), rows.end())) std::sort(rows.begin(), rows.end());
    RowRanges result;
    for (const int row : rows) {
        if (!result.ranges_.empty() && result.ranges_.back().end == row) {
            ++result.ranges_.back().end;
        } else {
            result.ranges_.push_back({row, row + 1});
        }
    }
    return result;
}

} // namespace corvane
