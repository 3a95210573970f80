// A set of rows as ranges: "all of a million" costs as much as one row. A value, without threads of its own.
//
// The ranges are in order, not empty, and don't touch.
#pragma once

#include <vector>

namespace corvane {

class RowRanges {
  public:
    struct Range {
        int first = 0;
        int end = 0; // behind the last row

        friend bool operator==(const Range&, const Range&) = default;
    };

    // Rows from `first` to before `end`; no effect when that is empty.
    void add(int first, int end);
    void remove(int first, int end);

    void clear() { ranges_.clear(); }

    [[nodiscard]] bool contains(int row) const;
    [[nodiscard]] int count() const;

    [[nodiscard]] bool isEmpty() const { return ranges_.empty(); }

    [[nodiscard]] const std::vector<Range>& ranges() const { return ranges_; }

    // Calls `visit` with each row, in order.
    template <class Visit>
    void forEach(const Visit& visit) const {
        for (const Range& range : ranges_) {
            for (int row = range.first; row < range.end; ++row) visit(row);
        }
    }

    // Where the rows have gone: `newRows` holds the new row of each old one, -1 for those that have gone.
    [[nodiscard]] RowRanges mapped(const std::vector<int>& newRows) const;

    friend bool operator==(const RowRanges&, const RowRanges&) = default;

  private:
    std::vector<Range> ranges_;
};

} // namespace corvane
