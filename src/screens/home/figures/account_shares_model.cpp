#include "screens/home/figures/account_shares_model.h"

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

int AccountSharesModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QHash<int, QByteArray> AccountSharesModel::roleNames() const {
    return {
        {TitleRole, "title"},           {LineRole, "line"},    {SizeRole, "size"}, {ArchivedRole, "archived"},
        {UnarchivedRole, "unarchived"}, {ChosenRole, "chosen"}};
}

QVariant AccountSharesModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case TitleRole:
        return row.title;
    case LineRole:
        return QStringLiteral("未归档 ") + screens::shownCount(row.unarchived);
    case SizeRole:
        return screens::shownSize(row.unarchivedBytes);
    case ArchivedRole:
        return static_cast<int>(row.archived);
    case UnarchivedRole:
        return static_cast<int>(row.unarchived);
    case ChosenRole:
        return row.isChosen;
    default:
        return {};
    }
}

void AccountSharesModel::show(const OrganizeOverview& overview, const std::optional<std::string>& chosenKey) {
    Row all;
    all.title = QStringLiteral("全部邮箱");
    all.isChosen = !chosenKey;
    std::vector<Row> rows{std::move(all)};
    for (const OrganizeAccount& account : overview.accounts) {
        Row row{.key = account.key,
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
    const auto before = rows_.size();
    updateRows(rows_, std::move(rows), [](const Row& row) { return std::string_view(row.key); });
    if (before != rows_.size()) Q_EMIT countChanged();
}

std::optional<std::string> AccountSharesModel::keyAt(int row) const {
    return row > 0 && row < rowCount() ? std::optional(rows_[static_cast<std::size_t>(row)].key)
                                       : std::nullopt;
}

} // namespace corvane
