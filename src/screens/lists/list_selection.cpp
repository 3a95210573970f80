#include "screens/lists/list_selection.h"

#include <algorithm>

namespace corvane {

namespace {

int mappedRow(int row, const std::vector<int>& newRows) {
    return row >= 0 && row < static_cast<int>(newRows.size()) ? newRows[static_cast<std::size_t>(row)] : -1;
}

} // namespace

int ListSelection::within(int row) const {
    return rowCount_ == 0 ? -1 : std::clamp(row, 0, rowCount_ - 1);
}

void ListSelection::setCurrent(int row) {
    if (currentRow_ == row) return;
    currentRow_ = row;
    Q_EMIT currentRowChanged();
}

void ListSelection::replace(RowRanges rows) {
    if (rows_ == rows) return;
    int first = rowCount_;
    int end = 0;
    for (const RowRanges* each : {&rows_, &rows}) {
        if (each->isEmpty()) continue;
        first = std::min(first, each->ranges().front().first);
        end = std::max(end, each->ranges().back().end);
    }
    rows_ = std::move(rows);
    Q_EMIT selectionChanged(first, std::min(end, rowCount_) - 1);
}

void ListSelection::select(int row) {
    anchor_ = within(row);
    extendTo(row);
}

void ListSelection::extendTo(int row) {
    const int end = within(row);
    if (end < 0) return;
    if (anchor_ < 0) anchor_ = currentRow_ < 0 ? end : currentRow_;
    RowRanges rows;
    rows.add(std::min(anchor_, end), std::max(anchor_, end) + 1);
    replace(std::move(rows));
    setCurrent(end);
}

void ListSelection::toggle(int row) {
    const int chosen = within(row);
    if (chosen < 0) return;
    RowRanges rows = rows_;
    if (rows.contains(chosen)) {
        rows.remove(chosen, chosen + 1);
    } else {
        rows.add(chosen, chosen + 1);
    }
    anchor_ = chosen;
    replace(std::move(rows));
    setCurrent(chosen);
}

void ListSelection::moveTo(int row) {
    setCurrent(within(row));
}

void ListSelection::selectAll() {
    RowRanges all;
    all.add(0, rowCount_);
    replace(std::move(all));
}

void ListSelection::remap(const std::vector<int>& newRows, int rowCount) {
    RowRanges rows = rows_.mapped(newRows);
    const int current = mappedRow(currentRow_, newRows);
    anchor_ = mappedRow(anchor_, newRows);
    rowCount_ = rowCount;
    replace(std::move(rows));
    setCurrent(current);
}

} // namespace corvane
