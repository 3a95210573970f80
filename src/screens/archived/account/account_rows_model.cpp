#include "screens/archived/account/account_rows_model.h"

#include <functional>
#include <utility>
#include <vector>

#include <QVariantMap>

#include "records/texts/formatters.h"
#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using Stats = ArchivedOverviewStats;

QString dashOrCount(std::int64_t count) {
    return count == 0 ? QStringLiteral("—") : screens::shownCount(count);
}

FolderPresence sumOf(const std::vector<Stats::Folder>& folders) {
    FolderPresence sum;
    for (const Stats::Folder& folder : folders) {
        sum.present += folder.presence.present;
        sum.missing += folder.presence.missing;
        sum.unknown += folder.presence.unknown;
        sum.unproven += folder.presence.unproven;
    }
    return sum;
}

QVariantMap statusValue(const YearStatus& status) {
    return {{QStringLiteral("label"), status.label},
            {QStringLiteral("symbol"), status.symbol},
            {QStringLiteral("tone"), status.tone}};
}

QVariantMap line(const char16_t* symbol, const char16_t* text, const char16_t* tone = u"") {
    return {{QStringLiteral("symbol"), QString::fromUtf16(symbol)},
            {QStringLiteral("text"), QString::fromUtf16(text)},
            {QStringLiteral("tone"), QString::fromUtf16(tone)}};
}

QVariantMap entryLine(ArchivedOriginalPresenceStatus presence, OriginalKnowledge knowledge) {
    if (knowledge != OriginalKnowledge::known)
        return line(u"search", u"归档副本仍在；还没有对照 Mail，不知道原件是否还在。");
    switch (presence) {
    case ArchivedOriginalPresenceStatus::present:
        return line(u"circle-check", u"归档副本仍在；Mail 数据里还能找到这封原件。如果按年份搜不到，可以"
                                     u"按主题或发件人搜索。");
    case ArchivedOriginalPresenceStatus::missing:
        return line(u"minus", u"归档副本仍在；Mail 正常邮箱中没有找到这封原件。");
    case ArchivedOriginalPresenceStatus::unknown:
        break;
    }
    return line(u"circle-question-mark",
                u"归档副本仍在；这封邮件缺少可自动对照 Mail 的邮件标识，需要按主题、发件人和日期手动确认。",
                u"attention");
}

bool isFoldable(AccountRowLevel level) {
    return level == AccountRowLevel::year || level == AccountRowLevel::folder;
}

// Distinct for rows of different levels; `name` within its level.
std::uint64_t rowKey(AccountRowLevel level, const std::string& name) {
    return (std::hash<std::string>()(name) << 2U) | static_cast<std::uint64_t>(level);
}

} // namespace

QHash<int, QByteArray> AccountRowsModel::roleNames() const {
    return {{LevelRole, "level"},           {TitleRole, "title"},
            {ExpandedRole, "expanded"},     {StatusRole, "status"},
            {PresentRole, "present"},       {RemovedRole, "removed"},
            {FreeableRole, "freeable"},     {SenderRole, "sender"},
            {DateTextRole, "dateText"},     {LineRole, "line"},
            {CanLocateRole, "canLocate"},   {HelpRole, "help"},
            {SpokenNameRole, "spokenName"}, {SelectedRole, "selected"}};
}

void AccountRowsModel::show(Source source) {
    source_ = std::move(source);
    ++version_;
    refresh();
}

void AccountRowsModel::collapseAll() {
    expandedKeys_.clear();
}

void AccountRowsModel::refresh() {
    replace(makeRows());
}

std::string AccountRowsModel::keyOf(const AccountRow& row) const {
    const auto& year = source_.group->years[row.year];
    return row.level == AccountRowLevel::year ? year.key : year.folders[row.folder].key();
}

AccountRowsModel::Records AccountRowsModel::makeRows() const {
    Records rows;
    if (source_.group == nullptr) return rows;
    for (std::uint32_t number = 0; number < source_.group->years.size(); ++number) {
        const std::string& key = source_.group->years[number].key;
        const bool isExpanded = expandedKeys_.contains(key);
        rows.push_back({.key = rowKey(AccountRowLevel::year, key),
                        .version = version_,
                        .isExpanded = isExpanded,
                        .year = number});
        if (isExpanded) addFolders(rows, number);
    }
    if (source_.group->undated.count > 0)
        rows.push_back({.key = rowKey(AccountRowLevel::undated, {}),
                        .version = version_,
                        .level = AccountRowLevel::undated});
    return rows;
}

void AccountRowsModel::addFolders(Records& rows, std::uint32_t year) const {
    const auto& folders = source_.group->years[year].folders;
    for (std::uint32_t number = 0; number < folders.size(); ++number) {
        const std::string key = folders[number].key();
        const bool isExpanded = expandedKeys_.contains(key);
        rows.push_back({.key = rowKey(AccountRowLevel::folder, key),
                        .version = version_,
                        .level = AccountRowLevel::folder,
                        .isExpanded = isExpanded,
                        .year = year,
                        .folder = number});
        if (!isExpanded) continue;
        for (const EntryPosition entry : folders[number].entries) {
            rows.push_back({.key = (static_cast<std::uint64_t>(entry) << 2U) |
                                   static_cast<std::uint64_t>(AccountRowLevel::entry),
                            .version = version_,
                            .level = AccountRowLevel::entry,
                            .year = year,
                            .folder = number,
                            .entry = entry});
        }
    }
}

void AccountRowsModel::setExpanded(int row, bool expanded) {
    const AccountRow* const shown = record(row);
    if (shown == nullptr || !isFoldable(shown->level) || shown->isExpanded == expanded) return;
    if (expanded) {
        expandedKeys_.insert(keyOf(*shown));
    } else {
        expandedKeys_.erase(keyOf(*shown));
    }
    refresh();
    selection()->select(row);
}

int AccountRowsModel::parentRow(int row) const {
    const AccountRow* const shown = record(row);
    if (shown == nullptr || shown->level == AccountRowLevel::undated) return -1;
    int above = row - 1;
    while (above >= 0 && record(above)->level >= shown->level) --above;
    return above;
}

int AccountRowsModel::firstChildRow(int row) const {
    const AccountRow* const shown = record(row);
    return shown != nullptr && isFoldable(shown->level) && shown->isExpanded ? row + 1 : -1;
}

const ArchivedEntry* AccountRowsModel::entryAt(int row) const {
    const AccountRow* const shown = record(row);
    if (shown == nullptr || shown->level != AccountRowLevel::entry) return nullptr;
    return &source_.overview->inputs.index->entry(shown->entry);
}

ArchivedOriginalPresenceStatus AccountRowsModel::presenceOf(const AccountRow& row) const {
    const OverviewInputs& inputs = source_.overview->inputs;
    const bool isOfTheseEntries = inputs.presence->entries == inputs.index->input().entries;
    return isOfTheseEntries ? inputs.presence->statusAt(row.entry) : ArchivedOriginalPresenceStatus::unknown;
}

QVariant AccountRowsModel::yearValue(const AccountRow& row, int role) const {
    const auto& year = source_.group->years[row.year];
    const Stats::Year& stats = source_.stats->years[row.year];
    const bool isKnown = source_.knowledge == OriginalKnowledge::known;
    switch (role) {
    case TitleRole:
        return screens::shownYear(year.year);
    case StatusRole:
        return statusValue(screens::yearStatus(source_.knowledge, stats));
    case PresentRole:
        return dashOrCount(isKnown ? sumOf(stats.folders).present : 0);
    case RemovedRole:
        return dashOrCount(isKnown ? stats.removed.count : 0);
    case FreeableRole:
        return screens::shownSize(isKnown ? stats.freeable.bytes : 0);
    case HelpRole:
        return row.isExpanded ? QStringLiteral("收起文件夹明细") : QStringLiteral("展开查看文件夹明细");
    default:
        return {};
    }
}

QVariant AccountRowsModel::folderValue(const AccountRow& row, int role) const {
    const auto& folder = source_.group->years[row.year].folders[row.folder];
    const Stats::Folder& stats = source_.stats->years[row.year].folders[row.folder];
    const bool isKnown = source_.knowledge == OriginalKnowledge::known;
    switch (role) {
    case TitleRole:
        return folder.mailbox.empty() ? QStringLiteral("未命名文件夹") : screens::shownLine(folder.mailbox);
    case StatusRole:
        return statusValue(screens::yearStatus(source_.knowledge, stats.status, stats.awaitsProof));
    case PresentRole:
        return dashOrCount(isKnown ? stats.presence.present : 0);
    case RemovedRole:
        return dashOrCount(isKnown ? stats.presence.missing : 0);
    case FreeableRole:
        return QString();
    case HelpRole:
        return row.isExpanded ? QStringLiteral("收起邮件") : QStringLiteral("展开查看邮件");
    default:
        return {};
    }
}

QVariant AccountRowsModel::entryValue(const AccountRow& row, int role) const {
    const ArchivedEmailRecord& record = source_.overview->inputs.index->entry(row.entry).record;
    switch (role) {
    case TitleRole:
        return screens::shownLine(record.subject.view());
    case SenderRole:
        return screens::shownSender(record.sender.view());
    case DateTextRole:
        return screens::wholeText(formatMailDate(record.date));
    case LineRole:
        return entryLine(presenceOf(row), source_.knowledge);
    case CanLocateRole:
        return presenceOf(row) != ArchivedOriginalPresenceStatus::missing;
    default:
        return {};
    }
}

QString AccountRowsModel::spokenName(const AccountRow& row) const {
    if (row.level == AccountRowLevel::entry) {
        return QStringLiteral("%1，%2，%3，%4")
            .arg(entryValue(row, TitleRole).toString(), entryValue(row, SenderRole).toString(),
                 entryValue(row, DateTextRole).toString(),
                 entryValue(row, LineRole).toMap()[QStringLiteral("text")].toString());
    }
    const auto text = [&](int role) { return value(row, role).toString(); };
    return QStringLiteral("%1，%2，在 Mail %3，已删 %4，可释放 %5")
        .arg(text(TitleRole), value(row, StatusRole).toMap()[QStringLiteral("label")].toString(),
             text(PresentRole), text(RemovedRole), text(FreeableRole));
}

QVariant AccountRowsModel::value(const AccountRow& row, int role) const {
    if (role == LevelRole) return static_cast<int>(row.level);
    // A row of before, while the list changes: its numbers belong to a group that may have gone.
    if (row.version != version_) return {};
    if (role == ExpandedRole) return row.isExpanded;
    if (role == SpokenNameRole && row.level != AccountRowLevel::undated) return spokenName(row);
    switch (row.level) {
    case AccountRowLevel::year:
        return yearValue(row, role);
    case AccountRowLevel::folder:
        return folderValue(row, role);
    case AccountRowLevel::entry:
        return entryValue(row, role);
    case AccountRowLevel::undated:
        break;
    }
    if (role != TitleRole && role != SpokenNameRole) return {};
    const MailSum& undated = source_.group->undated;
    return screens::undatedRemark(undated.count) +
           QStringLiteral("（%1），不算在任何年份里，可以在归档库里查看。")
               .arg(screens::shownSize(undated.bytes));
}

} // namespace corvane
