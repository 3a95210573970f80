#include "screens/home/figures/account_shares_model.h"

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

QHash<int, QByteArray> AccountSharesModel::roleNames() const {
    return {
        {TitleRole, "title"},           {LineRole, "line"},    {SizeRole, "size"}, {ArchivedRole, "archived"},
        {UnarchivedRole, "unarchived"}, {ChosenRole, "chosen"}};
}

QVariant AccountSharesModel::value(const AccountShare& share, int role) const {
    switch (role) {
    case TitleRole:
        return share.title;
    case LineRole:
        return QStringLiteral("未归档 ") + screens::shownCount(share.unarchived);
    case SizeRole:
        return screens::shownSize(share.unarchivedBytes);
    case ArchivedRole:
        return static_cast<int>(share.archived);
    case UnarchivedRole:
        return static_cast<int>(share.unarchived);
    case ChosenRole:
        return share.isChosen;
    default:
        return {};
    }
}

void AccountSharesModel::show(const OrganizeOverview& overview, const std::optional<std::string>& chosenKey) {
    AccountShare all;
    all.title = QStringLiteral("全部邮箱");
    all.isChosen = !chosenKey;
    Records rows{std::move(all)};
    for (const OrganizeAccount& account : overview.accounts) {
        AccountShare row{.key = account.key,
                         .title = screens::shownLine(account.title),
                         .isChosen = chosenKey == account.key};
        for (const auto& [year, tally] : overview.tallies.at(account.key)) {
            row.archived += tally.archived;
            row.unarchived += tally.local - tally.archived;
        }
        for (const auto& section : overview.sections) {
            if (section.key == account.key) row.unarchivedBytes = section.bytes;
        }
        rows.front().archived += row.archived;
        rows.front().unarchived += row.unarchived;
        rows.front().unarchivedBytes += row.unarchivedBytes;
        rows.push_back(std::move(row));
    }
    replace(std::move(rows));
}

std::optional<std::string> AccountSharesModel::keyAt(int row) const {
    const AccountShare* const share = record(row);
    return share == nullptr || row == 0 ? std::nullopt : std::optional(share->key);
}

} // namespace corvane
