#include "screens/home/tree/organize_tree_model.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_map>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownMessageCount;
using screens::shownSize;

QString yearTitle(std::int64_t year) {
    return year == undatedYear ? QStringLiteral("没有日期") : QStringLiteral("%1 年").arg(year);
}

QString folderTitle(const std::string& mailbox) {
    return mailbox.empty() ? QStringLiteral("未命名文件夹") : screens::shownLine(mailbox);
}

OrganizeTreeModel::Tick shownTick(TickState state) {
    constexpr std::array ticks = {OrganizeTreeModel::Unticked, OrganizeTreeModel::Mixed,
                                  OrganizeTreeModel::Ticked};
    return ticks[static_cast<std::size_t>(state)];
}

QString tickHelpOf(OrganizeTreeModel::Level level, bool isTicked) {
    switch (level) {
    case OrganizeTreeModel::Account:
        return isTicked ? QStringLiteral("取消选择这个邮箱") : QStringLiteral("选择这个邮箱全部待归档邮件");
    case OrganizeTreeModel::Year:
        return isTicked ? QStringLiteral("取消选择这一年") : QStringLiteral("选择这一年全部待归档邮件");
    case OrganizeTreeModel::Folder:
        return isTicked ? QStringLiteral("取消选择这个文件夹") : QStringLiteral("选择这个文件夹");
    }
    return {};
}

QString expandHelpOf(OrganizeTreeModel::Level level, bool isExpanded) {
    if (level == OrganizeTreeModel::Account)
        return isExpanded ? QStringLiteral("收起年份") : QStringLiteral("展开查看年份");
    return isExpanded ? QStringLiteral("收起文件夹明细") : QStringLiteral("展开查看文件夹明细");
}

double largestYear(const OrganizeOverview& overview, const OrganizeScope& scope) {
    std::int64_t largest = 1;
    for (const auto& section : overview.sections) {
        if (!scope.holdsAccount(section.key)) continue;
        for (const auto& year : section.years) {
            if (scope.holdsYear(year.year)) largest = std::max(largest, year.bytes);
        }
    }
    return static_cast<double>(largest);
}

} // namespace

OrganizeTreeModel::OrganizeTreeModel(QObject* parent)
  : RowListModel(parent) {
    connect(&selection_, &ListSelection::selectionChanged, this, &OrganizeTreeModel::tellSelected);
}

int OrganizeTreeModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QHash<int, QByteArray> OrganizeTreeModel::roleNames() const {
    return {{LevelRole, "level"},
            {TitleRole, "title"},
            {CountRole, "count"},
            {SizeRole, "size"},
            {ShareRole, "share"},
            {TickRole, "tick"},
            {ExpandedRole, "expanded"},
            {ExpandableRole, "expandable"},
            {TickHelpRole, "tickHelp"},
            {ExpandHelpRole, "expandHelp"},
            {AccessibleTextRole, "accessibleText"},
            {SelectedRole, "selected"}};
}

QVariant OrganizeTreeModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case LevelRole:
        return row.level;
    case TitleRole:
        return row.title;
    case CountRole:
        return shownCount(row.count);
    case SizeRole:
        return shownSize(row.bytes);
    case ShareRole:
        return row.share;
    case TickRole:
        return shownTick(row.tick);
    case ExpandedRole:
        return row.isExpanded;
    case ExpandableRole:
        return row.isExpandable;
    case TickHelpRole:
        return tickHelpOf(row.level, row.tick == TickState::on);
    case ExpandHelpRole:
        return row.isExpandable ? expandHelpOf(row.level, row.isExpanded) : QString();
    case AccessibleTextRole:
        return accessibleText(row);
    case SelectedRole:
        return selection_.isSelected(index.row());
    default:
        return {};
    }
}

QString OrganizeTreeModel::accessibleText(const Row& row) const {
    const std::array states = {QStringLiteral("未勾选"), QStringLiteral("部分勾选"),
                               QStringLiteral("已勾选")};
    return QStringLiteral("%1，%2，%3，%4")
        .arg(row.title, shownMessageCount(row.count), shownSize(row.bytes),
             states[static_cast<std::size_t>(row.tick)]);
}

std::vector<OrganizeTreeModel::Row> OrganizeTreeModel::makeRows() const {
    std::vector<Row> rows;
    const double wholeBytes = largestYear(*overview_, scope_);
    for (std::size_t position = 0; position < overview_->sections.size(); ++position) {
        const auto& section = overview_->sections[position];
        if (!scope_.holdsAccount(section.key)) continue;
        Row row{.level = Account,
                .key = section.key,
                .title = screens::shownLine(section.title),
                .tick = ticks_.stateOf(section, scope_),
                .isExpanded = !collapsedAccountKeys_.contains(section.key),
                .section = position};
        std::vector<Row> years;
        for (std::size_t year = 0; year < section.years.size(); ++year) {
            if (!scope_.holdsYear(section.years[year].year)) continue;
            row.count += section.years[year].count;
            row.bytes += section.years[year].bytes;
            addYear(years, position, year, wholeBytes);
        }
        if (years.empty()) continue;
        const bool isOpen = row.isExpanded;
        rows.push_back(std::move(row));
        if (isOpen) std::move(years.begin(), years.end(), std::back_inserter(rows));
    }
    return rows;
}

void OrganizeTreeModel::addYear(std::vector<Row>& rows, std::size_t section, std::size_t year,
                                double wholeBytes) const {
    const OrganizeYearGroup& group = overview_->sections[section].years[year];
    const bool isExpanded = expandedOrganizeYearKeys_.contains(group.key) && !group.folders.empty();
    rows.push_back({Year, group.key, yearTitle(group.year), group.count, group.bytes,
                    static_cast<double>(group.bytes) / wholeBytes, ticks_.stateOf(group), isExpanded,
                    !group.folders.empty(), section, year, 0});
    if (!isExpanded) return;
    for (std::size_t position = 0; position < group.folders.size(); ++position) {
        const OrganizeFolderRow& folder = group.folders[position];
        rows.push_back({Folder, folder.key, folderTitle(folder.mailbox), folder.count, folder.bytes,
                        static_cast<double>(folder.bytes) / wholeBytes, ticks_.stateOf(group, folder), false,
                        false, section, year, position});
    }
}

void OrganizeTreeModel::show() {
    std::vector<std::string> earlierKeys;
    earlierKeys.reserve(rows_.size());
    for (const Row& row : rows_) earlierKeys.push_back(row.key);
    updateRows(rows_, makeRows(), [](const Row& row) { return std::string_view(row.key); });
    selectionFollows(earlierKeys);
}

// Where the current row has gone, what stood above it is the current one: the year whose folders were closed.
void OrganizeTreeModel::selectionFollows(const std::vector<std::string>& earlierKeys) {
    std::unordered_map<std::string_view, int> rowOfKey;
    for (int row = 0; row < rowCount(); ++row)
        rowOfKey.emplace(rows_[static_cast<std::size_t>(row)].key, row);
    std::vector<int> newRows;
    newRows.reserve(earlierKeys.size());
    for (const std::string& key : earlierKeys) {
        const auto found = rowOfKey.find(key);
        newRows.push_back(found == rowOfKey.end() ? -1 : found->second);
    }
    int current = selection_.currentRow();
    const bool isLost = current >= 0 && newRows[static_cast<std::size_t>(current)] < 0;
    while (current >= 0 && newRows[static_cast<std::size_t>(current)] < 0) --current;
    selection_.remap(newRows, rowCount());
    if (isLost) selection_.select(current < 0 ? 0 : newRows[static_cast<std::size_t>(current)]);
    // What a view asked for while rows went and came was told by the rows of before.
    tellSelected(0, rowCount() - 1);
}

void OrganizeTreeModel::tellSelected(int first, int last) {
    last = std::min(last, rowCount() - 1);
    if (first <= last) Q_EMIT dataChanged(index(first), index(last), {SelectedRole});
}

void OrganizeTreeModel::setOverview(SharedOrganizeOverview overview) {
    overview_ = std::move(overview);
    ticks_.prune(*overview_);
    // The figures of what is ticked may be others also when no tick has gone.
    ticksWereChanged();
}

void OrganizeTreeModel::setScope(const OrganizeScope& scope) {
    if (scope_ == scope) return;
    scope_ = scope;
    ticksWereChanged();
}

int OrganizeTreeModel::tickState() const {
    return shownTick(ticks_.stateOfAll(*overview_, scope_));
}

QString OrganizeTreeModel::tickHelp() const {
    return tickState() == Ticked ? QStringLiteral("取消选择全部") : QStringLiteral("选中全部邮箱和年份");
}

void OrganizeTreeModel::ticksWereChanged() {
    show();
    Q_EMIT ticksChanged();
}

void OrganizeTreeModel::toggleTick(int row) {
    if (row < 0 || row >= rowCount()) return;
    const Row& shown = rows_[static_cast<std::size_t>(row)];
    setTick(shown, shown.tick != TickState::on);
    ticksWereChanged();
}

void OrganizeTreeModel::toggleTicks(int row) {
    if (!selection_.isSelected(row)) return toggleTick(row);
    const bool ticked = rows_[static_cast<std::size_t>(row)].tick != TickState::on;
    for (const auto& range : selection_.rows().ranges()) {
        for (int each = range.first; each < range.end; ++each)
            setTick(rows_[static_cast<std::size_t>(each)], ticked);
    }
    ticksWereChanged();
}

void OrganizeTreeModel::setTick(const Row& shown, bool ticked) {
    const auto& section = overview_->sections[shown.section];
    if (shown.level == Account) ticks_.setSection(section, scope_, ticked);
    if (shown.level == Year) ticks_.setYear(section.years[shown.year], ticked);
    if (shown.level == Folder) {
        const OrganizeYearGroup& year = section.years[shown.year];
        ticks_.setFolder(year, year.folders[shown.folder], ticked);
    }
}

QString OrganizeTreeModel::selectedLines() const {
    QStringList lines;
    for (const auto& range : selection_.rows().ranges()) {
        for (int row = range.first; row < range.end; ++row) {
            const Row& shown = rows_[static_cast<std::size_t>(row)];
            QStringList parts{shown.title, shownMessageCount(shown.count), shownSize(shown.bytes)};
            for (int above = parentRow(row); above >= 0; above = parentRow(above))
                parts.prepend(rows_[static_cast<std::size_t>(above)].title);
            lines += parts.join(QStringLiteral(" · "));
        }
    }
    return lines.join(u'\n');
}

void OrganizeTreeModel::setAllTicks(bool ticked) {
    ticks_.setAll(*overview_, scope_, ticked);
    ticksWereChanged();
}

void OrganizeTreeModel::toggleAllTicks() {
    setAllTicks(tickState() != Ticked);
}

void OrganizeTreeModel::tickAll() {
    setAllTicks(true);
}

void OrganizeTreeModel::setExpanded(int row, bool expanded) {
    if (row < 0 || row >= rowCount()) return;
    const Row& shown = rows_[static_cast<std::size_t>(row)];
    if (!shown.isExpandable || shown.isExpanded == expanded) return;
    const bool isListed = (shown.level == Account) != expanded;
    auto& keys = shown.level == Account ? collapsedAccountKeys_ : expandedOrganizeYearKeys_;
    if (isListed) {
        keys.insert(shown.key);
    } else {
        keys.erase(shown.key);
    }
    show();
}

int OrganizeTreeModel::parentRow(int row) const {
    if (row < 0 || row >= rowCount()) return -1;
    const Level level = rows_[static_cast<std::size_t>(row)].level;
    for (int above = row - 1; above >= 0; --above) {
        if (rows_[static_cast<std::size_t>(above)].level < level) return above;
    }
    return -1;
}

int OrganizeTreeModel::firstChildRow(int row) const {
    if (row < 0 || row + 1 >= rowCount()) return -1;
    return rows_[static_cast<std::size_t>(row) + 1].level > rows_[static_cast<std::size_t>(row)].level
               ? row + 1
               : -1;
}

} // namespace corvane
