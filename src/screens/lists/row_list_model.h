// A list model whose rows are brought to a new state without a reset, so that a view keeps its place: rows go
// and come in ranges, everything else stays. Rows that change their order go and come again, as few of them
// as possible. For lists of up to some thousand rows; n log n.
#pragma once

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include <QAbstractListModel>

namespace corvane {

class RowListModel : public QAbstractListModel {
  public:
    using QAbstractListModel::QAbstractListModel;

  protected:
    // `keyOf` gives a hashable key, unique in each list, that lives as long as the rows.
    template <class Row, class KeyOf>
    void updateRows(std::vector<Row>& shown, std::vector<Row> rows, const KeyOf& keyOf) {
        const auto [staysInShown, staysInRows] = stayingRows(shown, rows, keyOf);
        const auto goingRanges = rangesWithout(staysInShown);
        for (auto going = goingRanges.rbegin(); going != goingRanges.rend(); ++going) {
            beginRemoveRows({}, static_cast<int>(going->first), static_cast<int>(going->end - 1));
            shown.erase(at(shown, going->first), at(shown, going->end));
            endRemoveRows();
        }
        for (const Range& coming : rangesWithout(staysInRows)) {
            beginInsertRows({}, static_cast<int>(coming.first), static_cast<int>(coming.end - 1));
            shown.insert(at(shown, coming.first), at(rows, coming.first), at(rows, coming.end));
            endInsertRows();
        }
        for (std::size_t position = 0; position < rows.size(); ++position) {
            if (shown[position] == rows[position]) continue;
            shown[position] = std::move(rows[position]);
            const QModelIndex changed = index(static_cast<int>(position));
            Q_EMIT dataChanged(changed, changed);
        }
    }

  private:
    struct Range {
        std::size_t first = 0;
        std::size_t end = 0; // behind the last row
    };

    template <class Row>
    static auto at(std::vector<Row>& rows, std::size_t position) {
        return rows.begin() + static_cast<std::ptrdiff_t>(position);
    }

    // For each list which of its rows stay where they are among each other.
    template <class Row, class KeyOf>
    static std::pair<std::vector<bool>, std::vector<bool>>
    stayingRows(const std::vector<Row>& before, const std::vector<Row>& after, const KeyOf& keyOf) {
        std::unordered_map<decltype(keyOf(before.front())), std::size_t> positionAfter;
        for (std::size_t position = 0; position < after.size(); ++position)
            positionAfter.emplace(keyOf(after[position]), position);
        std::vector<std::size_t> commonBefore;
        std::vector<std::size_t> commonAfter;
        for (std::size_t position = 0; position < before.size(); ++position) {
            const auto found = positionAfter.find(keyOf(before[position]));
            if (found == positionAfter.end()) continue;
            commonBefore.push_back(position);
            commonAfter.push_back(found->second);
        }
        std::vector<bool> staysBefore(before.size());
        std::vector<bool> staysAfter(after.size());
        for (const std::size_t chosen : longestAscending(commonAfter)) {
            staysBefore[commonBefore[chosen]] = true;
            staysAfter[commonAfter[chosen]] = true;
        }
        return {std::move(staysBefore), std::move(staysAfter)};
    }

    // Positions in `values` of one of its longest ascending subsequences.
    static std::vector<std::size_t> longestAscending(const std::vector<std::size_t>& values);

    static std::vector<Range> rangesWithout(const std::vector<bool>& staying);
};

} // namespace corvane
