#include "screens/lists/row_list_model.h"

#include <algorithm>
#include <utility>

namespace corvane {

RowListModel::RowListModel(QObject* parent)
  : QAbstractListModel(parent) {
    connect(&selection_, &ListSelection::selectionChanged, this,
            [this](int first, int last) { notifyRows(first, last, {SelectedRole}); });
}

int RowListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count_ - hiddenRows_;
}

int RowListModel::listedRow(int row) const {
    for (const RowRun& run : hidden_) {
        if (run.first > row) break;
        row += run.count;
    }
    return row;
}

void RowListModel::applyChanges(const RowChanges& changes, int nextCount,
                                const std::function<void()>& replace) {
    const int earlierCount = count_;
    Q_EMIT aboutToChange();
    newRows_ = changes.newRows;
    if (changes.isReset) {
        replaceAllRows(nextCount, replace);
    } else {
        removeRuns(changes.removed);
        replace();
        insertRuns(changes.inserted, nextCount);
        for (const RowRun& run : changes.changed)
            notifyRows(run.first, run.first + run.count - 1, rolesOfChange());
    }
    selection_.remap(newRows_, count_);
    // What a view asked for while rows went and came was answered by the rows of before.
    notifyAllRows({SelectedRole});
    Q_EMIT changed();
    newRows_ = {};
    if (earlierCount != count_) Q_EMIT countChanged();
}

// A view makes all its items anew for a reset. Items that stay and show other rows cost it a tenth of that.
void RowListModel::replaceAllRows(int nextCount, const std::function<void()>& replace) {
    const int staying = std::min(count_, nextCount);
    if (staying < count_) removeRuns({{staying, count_ - staying}});
    replace();
    if (staying < nextCount)
        insertRuns({{staying, nextCount - staying}}, nextCount);
    else
        insertRuns({}, nextCount);
    notifyRows(0, staying - 1);
}

// From the end on, so that the rows named still stand where they are named.
void RowListModel::removeRuns(const std::vector<RowRun>& runs) {
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        beginRemoveRows({}, run->first, run->first + run->count - 1);
        hidden_.insert(hidden_.begin(), *run);
        hiddenRows_ += run->count;
        endRemoveRows();
    }
}

// The list is the next one from here on, with what comes still hidden.
void RowListModel::insertRuns(const std::vector<RowRun>& runs, int nextCount) {
    count_ = nextCount;
    hidden_ = runs;
    hiddenRows_ = 0;
    for (const RowRun& run : runs) hiddenRows_ += run.count;
    for (const RowRun& run : runs) {
        beginInsertRows({}, run.first, run.first + run.count - 1);
        hidden_.erase(hidden_.begin());
        hiddenRows_ -= run.count;
        endInsertRows();
    }
}

void RowListModel::notifyRows(int first, int last, const QList<int>& roles) {
    last = std::min(last, rowCount() - 1);
    if (first <= last) Q_EMIT dataChanged(index(first), index(last), roles);
}

int RowListModel::rowAfterChange(int earlierRow) const {
    return earlierRow >= 0 && std::cmp_less(earlierRow, newRows_.size())
               ? newRows_[static_cast<std::size_t>(earlierRow)]
               : -1;
}

} // namespace corvane
