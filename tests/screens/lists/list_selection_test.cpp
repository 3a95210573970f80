#include "screens/lists/list_selection.h"

#include <random>
#include <set>

namespace corvane {
namespace {

using Ranges = std::vector<RowRanges::Range>;

std::set<int> rowsOf(const RowRanges& ranges) {
    std::set<int> rows;
    ranges.forEach([&](int row) { rows.insert(row); });
    return rows;
}

TEST(RowRanges, AreASetOfRowsWithoutTouchingRanges) {
    std::mt19937 random(3);
    RowRanges ranges;
    std::set<int> rows;
    for (int round = 0; round < 2'000; ++round) {
        const int first = static_cast<int>(random() % 40);
        const int end = first + static_cast<int>(random() % 6);
        const bool adds = random() % 2 == 0;
        adds ? ranges.add(first, end) : ranges.remove(first, end);
        for (int row = first; row < end; ++row) adds ? void(rows.insert(row)) : void(rows.erase(row));
        ASSERT_EQ(rowsOf(ranges), rows);
        ASSERT_EQ(ranges.count(), static_cast<int>(rows.size()));
        ASSERT_EQ(ranges.contains(first), rows.contains(first));
        for (std::size_t at = 1; at < ranges.ranges().size(); ++at) {
            ASSERT_LT(ranges.ranges()[at - 1].end, ranges.ranges()[at].first);
        }
    }
}

class Selection : public ::testing::Test {
  protected:
    Selection() { selection_.remap({}, 10); }

    ListSelection selection_;
};

TEST_F(Selection, RangesGrowAndShrinkFromTheAnchor) {
    selection_.select(4);
    selection_.extendTo(7);
    EXPECT_EQ(selection_.rows().ranges(), (Ranges{{4, 8}}));
    selection_.extendTo(2);
    EXPECT_EQ(selection_.rows().ranges(), (Ranges{{2, 5}}));
    EXPECT_EQ(selection_.currentRow(), 2);
    selection_.extendTo(99);
    EXPECT_EQ(selection_.rows().ranges(), (Ranges{{4, 10}}));
    selection_.select(-5);
    EXPECT_EQ(selection_.rows().ranges(), (Ranges{{0, 1}}));
}

TEST_F(Selection, AnEmptyListHasNoCurrentRowWhateverIsAskedOfIt) {
    selection_.select(3);
    selection_.remap(std::vector<int>(10, -1), 0);
    selection_.select(0);
    selection_.toggle(0);
    selection_.extendTo(2);
    selection_.moveTo(1);
    selection_.selectAll();
    EXPECT_EQ(selection_.count(), 0);
    EXPECT_EQ(selection_.currentRow(), -1);
}

} // namespace
} // namespace corvane
