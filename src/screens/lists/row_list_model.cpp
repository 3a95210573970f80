#include "screens/lists/row_list_model.h"

namespace corvane {

std::vector<std::size_t> RowListModel::longestAscending(const std::vector<std::size_t>& values) {
    std::vector<std::size_t> tails;
    std::vector<std::size_t> earlier(values.size());
    for (std::size_t position = 0; position < values.size(); ++position) {
        const auto place =
            std::lower_bound(tails.begin(), tails.end(), values[position],
                             [&](std::size_t tail, std::size_t value) { return values[tail] < value; });
        earlier[position] = place == tails.begin() ? position : *(place - 1);
        if (place == tails.end()) {
            tails.push_back(position);
        } else {
            *place = position;
        }
    }
    std::vector<std::size_t> chosen(tails.size());
    for (std::size_t position = tails.empty() ? 0 : tails.back(), left = tails.size(); left > 0;
         position = earlier[position]) {
        chosen[--left] = position;
    }
    return chosen;
}

std::vector<RowListModel::Range> RowListModel::rangesWithout(const std::vector<bool>& staying) {
    std::vector<Range> ranges;
    for (std::size_t position = 0; position < staying.size(); ++position) {
        if (staying[position]) continue;
        if (!ranges.empty() && ranges.back().end == position) {
            ++ranges.back().end;
        } else {
            ranges.push_back({position, position + 1});
        }
    }
    return ranges;
}

} // namespace corvane
