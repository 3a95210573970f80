#include "screens/shell/sidebar/sidebar_model.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace corvane {

namespace {

struct Place {
    const char16_t* key;
    const char16_t* title;
    const char16_t* symbol;
    bool hasScreen;
};

// By SidebarPlace, in the order of the keys Ctrl 1 to Ctrl 5, which stay the same whichever of them have a
// screen yet.
constexpr std::array<Place, 5> places = {{
    {u"home", u"归档邮件", u"archive", true},
    {u"archived", u"已归档概览", u"shield-check", false},
    {u"library", u"归档库", u"library", false},
    {u"mails", u"邮件列表", u"mails", true},
    {u"space", u"Mail 空间", u"chart-pie", false},
}};

constexpr std::chrono::seconds figurePause(1);

const Place& entryOf(SidebarPlace place) {
    return places.at(static_cast<std::size_t>(place));
}

int numberOf(SidebarPlace place) {
    return static_cast<int>(place) + 1;
}

} // namespace

SidebarModel::SidebarModel(QObject* parent)
  : QAbstractListModel(parent) {
    for (std::size_t position = 0; position < places.size(); ++position) {
        const auto place = static_cast<SidebarPlace>(position);
        if (hasScreen(place)) rows_.push_back({place, {}, {}});
    }
    pause_.setSingleShot(true);
    pause_.setInterval(figurePause);
    connect(&pause_, &QTimer::timeout, this, &SidebarModel::publish);
}

bool SidebarModel::hasScreen(SidebarPlace place) {
    return entryOf(place).hasScreen;
}

QString SidebarModel::keyOf(SidebarPlace place) {
    return QString::fromUtf16(entryOf(place).key);
}

int SidebarModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant SidebarModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    const Place& place = entryOf(row.place);
    switch (role) {
    case KeyRole:
        return QString::fromUtf16(place.key);
    case TitleRole:
        return QString::fromUtf16(place.title);
    case SymbolRole:
        return QString::fromUtf16(place.symbol);
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
        if (numberOf(row.place) == number) return keyOf(row.place);
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
