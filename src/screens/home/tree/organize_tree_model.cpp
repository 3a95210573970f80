#include "screens/home/tree/organize_tree_model.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownCount;
using screens::shownMessageCount;
using screens::shownSize;

QString yearTitle(std::int64_t year) {
    return year == undatedYear ? screens::undatedTitle() : screens::shownYear(year);
}

QString folderTitle(const std::string& mailbox) {
    return mailbox.empty() ? QStringLiteral("未命名文件夹") : screens::shownLine(mailbox);
}

OrganizeTreeModel::Tick shownTick(TickState state) {
    constexpr std::array ticks = {OrganizeTreeModel::Unticked, OrganizeTreeModel::Mixed,
                                  OrganizeTreeModel::Ticked};
    return ticks[static_cast<std::size_t>(state)];
}

QString tickHelpOf(OrganizeLevel level, bool isTicked) {
    switch (level) {
    case OrganizeLevel::account:
        return isTicked ? QStringLiteral("取消选择这个邮箱") : QStringLiteral("选择这个邮箱全部待归档邮件");
    case OrganizeLevel::year:
        return isTicked ? QStringLiteral("取消选择这一年") : QStringLiteral("选择这一年全部待归档邮件");
    case OrganizeLevel::folder:
        return isTicked ? QStringLiteral("取消选择这个文件夹") : QStringLiteral("选择这个文件夹");
    }
    return {};
}

QString expandHelpOf(OrganizeLevel level, bool isExpanded) {
    if (level == OrganizeLevel::account)
        return isExpanded ? QStringLiteral("收起年份") : QStringLiteral("展开查看年份");
    return isExpanded ? QStringLiteral("收起文件夹明细") : QStringLiteral("展开查看文件夹明细");
}

QString accessibleText(const OrganizeRow& row) {
    const std::array states = {QStringLiteral("未勾选"), QStringLiteral("部分勾选"),
                               QStringLiteral("已勾选")};
    const QString text = QStringLiteral("%1，%2，%3，%4")
                             .arg(row.title, shownMessageCount(row.count), shownSize(row.bytes),
                                  states[static_cast<std::size_t>(row.tick)]);
    if (!row.isExpandable) return text;
    return text + (row.isExpanded ? QStringLiteral("，已展开") : QStringLiteral("，已收起"));
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

QVariant OrganizeTreeModel::value(const OrganizeRow& row, int role) const {
    switch (role) {
    case LevelRole:
        return static_cast<int>(row.level);
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
    default:
        return {};
    }
}

OrganizeTreeModel::Records OrganizeTreeModel::makeRows() const {
    Records rows;
    const double wholeBytes = largestYear(*overview_, scope_);
    for (std::size_t position = 0; position < overview_->sections.size(); ++position) {
        const auto& section = overview_->sections[position];
        if (!scope_.holdsAccount(section.key)) continue;
        OrganizeRow row{.level = OrganizeLevel::account,
                        .key = section.key,
                        .title = screens::shownLine(section.title),
                        .tick = ticks_.stateOf(section, scope_),
                        .isExpanded = !collapsedAccountKeys_.contains(section.key),
                        .section = position};
        Records years;
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

void OrganizeTreeModel::addYear(Records& rows, std::size_t section, std::size_t year,
                                double wholeBytes) const {
    const OrganizeYearGroup& group = overview_->sections[section].years[year];
    const bool isExpanded = expandedOrganizeYearKeys_.contains(group.key) && !group.folders.empty();
    rows.push_back({OrganizeLevel::year, group.key, yearTitle(group.year), group.count, group.bytes,
                    static_cast<double>(group.bytes) / wholeBytes, ticks_.stateOf(group), isExpanded,
                    !group.folders.empty(), section, year, 0});
    if (!isExpanded) return;
    for (std::size_t position = 0; position < group.folders.size(); ++position) {
        const OrganizeFolderRow& folder = group.folders[position];
        rows.push_back({OrganizeLevel::folder, folder.key, folderTitle(folder.mailbox), folder.count,
                        folder.bytes, static_cast<double>(folder.bytes) / wholeBytes,
                        ticks_.stateOf(group, folder), false, false, section, year, position});
    }
}

void OrganizeTreeModel::show() {
    int current = selection()->currentRow();
    const std::vector<int> newRows = replace(makeRows());
    const auto isGone = [&](int row) { return newRows[static_cast<std::size_t>(row)] < 0; };
    if (current < 0 || !isGone(current)) return;
    // What stood above a row that has gone is the current one: the year whose folders were closed.
    while (current >= 0 && isGone(current)) --current;
    selection()->select(current < 0 ? 0 : newRows[static_cast<std::size_t>(current)]);
}

void OrganizeTreeModel::setOverview(SharedOrganizeOverview overview) {
    overview_ = std::move(overview);
    ticks_.prune(*overview_);
    // The figures of what is ticked may be others also when no tick has gone.
    handleTickChange();
}

void OrganizeTreeModel::setScope(const OrganizeScope& scope) {
    if (scope_ == scope) return;
    scope_ = scope;
    handleTickChange();
}

int OrganizeTreeModel::tickState() const {
    return shownTick(ticks_.stateOfAll(*overview_, scope_));
}

QString OrganizeTreeModel::tickHelp() const {
    return tickState() == Ticked ? QStringLiteral("取消选择全部") : QStringLiteral("选中全部邮箱和年份");
}

void OrganizeTreeModel::handleTickChange() {
    show();
    Q_EMIT ticksChanged();
}

void OrganizeTreeModel::toggleTick(int row) {
    const OrganizeRow* const shown = record(row);
    if (shown == nullptr) return;
    setTick(*shown, shown->tick != TickState::on);
    handleTickChange();
}

void OrganizeTreeModel::toggleTicks(int row) {
    if (!selection()->isSelected(row)) return toggleTick(row);
    const bool ticked = record(row)->tick != TickState::on;
    selection()->rows().forEach([&](int each) { setTick(*record(each), ticked); });
    handleTickChange();
}

void OrganizeTreeModel::setTick(const OrganizeRow& shown, bool ticked) {
    const auto& section = overview_->sections[shown.section];
    if (shown.level == OrganizeLevel::account) ticks_.setSection(section, scope_, ticked);
    if (shown.level == OrganizeLevel::year) ticks_.setYear(section.years[shown.year], ticked);
    if (shown.level == OrganizeLevel::folder) {
        const OrganizeYearGroup& year = section.years[shown.year];
        ticks_.setFolder(year, year.folders[shown.folder], ticked);
    }
}

QString OrganizeTreeModel::selectedLines() const {
    QStringList lines;
    selection()->rows().forEach([&](int row) {
        const OrganizeRow& shown = *record(row);
        QStringList parts{shown.title, shownMessageCount(shown.count), shownSize(shown.bytes)};
        for (int above = parentRow(row); above >= 0; above = parentRow(above))
            parts.prepend(record(above)->title);
        lines += parts.join(QStringLiteral(" · "));
    });
    return lines.join(u'\n');
}

void OrganizeTreeModel::setAllTicks(bool ticked) {
    ticks_.setAll(*overview_, scope_, ticked);
    handleTickChange();
}

void OrganizeTreeModel::toggleAllTicks() {
    setAllTicks(tickState() != Ticked);
}

void OrganizeTreeModel::tickAll() {
    setAllTicks(true);
}

void OrganizeTreeModel::setExpanded(int row, bool expanded) {
    const OrganizeRow* const shown = record(row);
    if (shown == nullptr || !shown->isExpandable || shown->isExpanded == expanded) return;
    const bool isAccount = shown->level == OrganizeLevel::account;
    auto& keys = isAccount ? collapsedAccountKeys_ : expandedOrganizeYearKeys_;
    if (isAccount != expanded) {
        keys.insert(shown->key);
    } else {
        keys.erase(shown->key);
    }
    show();
}

int OrganizeTreeModel::parentRow(int row) const {
    if (record(row) == nullptr) return -1;
    int above = row - 1;
    while (above >= 0 && record(above)->level >= record(row)->level) --above;
    return above;
}

int OrganizeTreeModel::firstChildRow(int row) const {
    if (record(row) == nullptr || record(row + 1) == nullptr) return -1;
    return record(row + 1)->level > record(row)->level ? row + 1 : -1;
}

} // namespace corvane
