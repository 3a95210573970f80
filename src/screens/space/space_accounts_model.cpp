#include "screens/space/space_accounts_model.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownMessageCount;
using screens::shownSize;

// All further accounts share the last colour.
constexpr std::size_t seriesCount = 4;

QString localText(const SpaceAccount& account) {
    return QStringLiteral("本机已下载 ") + shownMessageCount(account.localCount);
}

QString cloudText(const SpaceAccount& account) {
    return QStringLiteral("云端未下载 ") +
           (account.cloudCount ? shownMessageCount(*account.cloudCount) : QStringLiteral("—"));
}

std::int64_t sumOf(const CountByAccountAndYear& counts, const std::string& account) {
    std::int64_t sum = 0;
    if (const auto years = counts.find(account); years != counts.end()) {
        for (const auto& [year, count] : years->second) sum += count;
    }
    return sum;
}

// Of the listed mail, and of the index, which has more. What Mail holds in part isn't among it.
std::optional<std::int64_t> cloudCount(const SpaceAccountUsage& usage, const IndexCounts& counts) {
    if (!counts.isKnown()) return std::nullopt;
    const std::int64_t counted = sumOf(counts.undownloadedYearCountsByAccount(), usage.accountPrefix) -
                                 sumOf(counts.partialYearCountsByAccount(), usage.accountPrefix);
    return std::max(usage.cloudOnlyCount, counted);
}

std::int64_t wholeBytes(const SpaceAccountUsage& usage) {
    return usage.localBytes + usage.cloudOnlyBytes;
}

double localShare(const SpaceAccount& account) {
    const std::int64_t whole = account.localBytes + account.cloudBytes;
    return whole == 0 ? 0 : static_cast<double>(account.localBytes) / static_cast<double>(whole);
}

} // namespace

QHash<int, QByteArray> SpaceAccountsModel::roleNames() const {
    return {{TitleRole, "title"},         {SeriesRole, "series"},         {LocalTextRole, "localText"},
            {LocalSizeRole, "localSize"}, {CloudTextRole, "cloudText"},   {CloudSizeRole, "cloudSize"},
            {ShareRole, "share"},         {LocalShareRole, "localShare"}, {HasCloudRole, "hasCloud"},
            {ChosenRole, "chosen"},       {SpokenNameRole, "spokenName"}, {SelectedRole, "selected"}};
}

QVariant SpaceAccountsModel::value(const SpaceAccount& account, int role) const {
    switch (role) {
    case TitleRole:
        return account.title;
    case SeriesRole:
        return account.series;
    case LocalTextRole:
        return localText(account);
    case LocalSizeRole:
        return shownSize(account.localBytes);
    case CloudTextRole:
        return cloudText(account);
    case CloudSizeRole:
        return shownSize(account.cloudBytes);
    case ShareRole:
        return account.share;
    case LocalShareRole:
        return localShare(account);
    case HasCloudRole:
        return account.cloudBytes > 0;
    case ChosenRole:
        return account.isChosen;
    case SpokenNameRole:
        return QStringLiteral("%1，%2，%3，%4，%5")
            .arg(account.title, localText(account), shownSize(account.localBytes), cloudText(account),
                 shownSize(account.cloudBytes));
    default:
        return {};
    }
}

void SpaceAccountsModel::show(const std::vector<SpaceAccountUsage>& usage, const IndexCounts& counts,
                              const std::string& chosenKey) {
    std::int64_t most = 1;
    for (const SpaceAccountUsage& account : usage) most = std::max(most, wholeBytes(account));
    Records rows;
    for (const SpaceAccountUsage& account : usage) {
        const std::size_t series = std::min(rows.size() + 1, seriesCount);
        rows.push_back({.key = account.accountPrefix,
                        .title = screens::shownLine(account.accountName),
                        .series = QStringLiteral("share%1").arg(series),
                        .localCount = account.localCount,
                        .localBytes = account.localBytes,
                        .cloudCount = cloudCount(account, counts),
                        .cloudBytes = account.cloudOnlyBytes,
                        .share = static_cast<double>(wholeBytes(account)) / static_cast<double>(most),
                        .isChosen = account.accountPrefix == chosenKey});
    }
    replace(std::move(rows));
}

} // namespace corvane
