#include "screens/mails/filter_options.h"

#include <algorithm>
#include <iterator>

#include <QLocale>

namespace corvane {

int FilterOptions::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant FilterOptions::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) return {};
    const FilterOption& option = options_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case TitleRole:
        return option.title;
    case CountTextRole:
        return QLocale(QLocale::Chinese).toString(option.count);
    case TickedRole:
        return option.isTicked;
    default:
        return {};
    }
}

QHash<int, QByteArray> FilterOptions::roleNames() const {
    return {{TitleRole, "title"}, {CountTextRole, "countText"}, {TickedRole, "ticked"}};
}

// The options between the equal ends go and come; a year or an account more doesn't move the others.
void FilterOptions::setOptions(std::vector<FilterOption> options) {
    const auto sameKey = [](const FilterOption& a, const FilterOption& b) { return a.key == b.key; };
    const auto head =
        std::mismatch(options_.begin(), options_.end(), options.begin(), options.end(), sameKey);
    const auto first = static_cast<int>(head.first - options_.begin());
    const auto tail = std::mismatch(options_.rbegin(), std::make_reverse_iterator(head.first),
                                    options.rbegin(), std::make_reverse_iterator(head.second), sameKey);
    const auto kept = static_cast<int>(tail.first - options_.rbegin());
    const int removed = count() - first - kept;
    const int inserted = static_cast<int>(options.size()) - first - kept;
    if (removed > 0) {
        beginRemoveRows({}, first, first + removed - 1);
        options_.erase(options_.begin() + first, options_.begin() + first + removed);
        endRemoveRows();
    }
    if (inserted > 0) {
        beginInsertRows({}, first, first + inserted - 1);
        options_.insert(options_.begin() + first, options.begin() + first,
                        options.begin() + first + inserted);
        endInsertRows();
    }
    for (int row = 0; row < count(); ++row) {
        FilterOption& present = options_[static_cast<std::size_t>(row)];
        FilterOption& next = options[static_cast<std::size_t>(row)];
        if (present == next) continue;
        present = std::move(next);
        Q_EMIT dataChanged(index(row), index(row));
    }
    if (removed != inserted) Q_EMIT countChanged();
}

} // namespace corvane
