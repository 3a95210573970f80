#include "screens/shell/sidebar/sidebar_model.h"

#include <algorithm>
#include <chrono>

namespace corvane {

namespace {

constexpr std::chrono::seconds figurePause(1);

// The digit that goes there with Ctrl.
int numberOf(SidebarPlace place) {
    return static_cast<int>(place) + 1;
}

} // namespace

SidebarModel::SidebarModel(QObject* parent)
  : QAbstractListModel(parent) {
    for (const SidebarPlace place : screens::allPlaces) rows_.push_back({place, {}, {}});
    pause_.setSingleShot(true);
    pause_.setInterval(figurePause);
    connect(&pause_, &QTimer::timeout, this, &SidebarModel::publish);
}

int SidebarModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant SidebarModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case KeyRole:
        return screens::textsOf(row.place).key;
    case TitleRole:
        return screens::textsOf(row.place).title;
    case SymbolRole:
        return screens::textsOf(row.place).symbol;
    case FigureRole:
        return row.shownFigure;
    case NumberRole:
        return numberOf(row.place);
    default:
        return {};
    }
}

QHash<int, QByteArray> SidebarModel::roleNames() const {
    return {{KeyRole, "key"},
            {TitleRole, "title"},
            {SymbolRole, "symbol"},
            {FigureRole, "figure"},
            {NumberRole, "number"}};
}

void SidebarModel::setFigure(SidebarPlace place, const QString& figure) {
    const auto row = std::find_if(rows_.begin(), rows_.end(),
                                  [place](const Row& candidate) { return candidate.place == place; });
    if (row == rows_.end() || row->figure == figure) return;
    row->figure = figure;
    if (!pause_.isActive()) publish();
}

QString SidebarModel::keyOfNumber(int number) const {
    for (const Row& row : rows_) {
        if (numberOf(row.place) == number) return screens::textsOf(row.place).key;
    }
    return {};
}

void SidebarModel::publish() {
    bool changed = false;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (rows_[i].shownFigure == rows_[i].figure) continue;
        rows_[i].shownFigure = rows_[i].figure;
        const QModelIndex index = this->index(static_cast<int>(i));
        Q_EMIT dataChanged(index, index, {FigureRole});
        changed = true;
    }
    if (changed) pause_.start();
}

} // namespace corvane
