#include "screens/archived/figures/archived_accounts_model.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <utility>

#include <QVariantMap>

#include "screens/texts/shown_figures.h"
#include "screens/texts/shown_text.h"

namespace corvane {

namespace {

using screens::shownMessageCount;
using screens::shownSize;

// With years between them that nobody has, as long as that keeps them in view.
constexpr std::int64_t widestSpan = 30;

std::vector<std::int64_t> yearsOf(const std::vector<ArchivedOverviewGroup>& groups) {
    std::set<std::int64_t> years;
    for (const ArchivedOverviewGroup& group : groups) {
        for (const auto& year : group.years) years.insert(year.year);
    }
    if (!years.empty() && *years.rbegin() - *years.begin() < widestSpan) {
        for (std::int64_t year = *years.begin(); year < *years.rbegin(); ++year) years.insert(year);
    }
    return {years.begin(), years.end()};
}

// A year that frees nothing isn't listed among those that may be cleaned.
bool isListed(const ArchivedOverviewStats::Year& year, ArchivedOverviewFilter filter) {
    return isShown(year, filter) && (filter != ArchivedOverviewFilter::cleanable || year.isCleanable);
}

QVariantMap cellOf(std::int64_t year, const YearStatus* status) {
    const QString label = QStringLiteral("%1").arg(year % 100, 2, 10, QLatin1Char('0'));
    if (status == nullptr) return {{QStringLiteral("label"), label}, {QStringLiteral("key"), QString()}};
    return {{QStringLiteral("label"), label},
            {QStringLiteral("key"), status->key},
            {QStringLiteral("symbol"), status->symbol},
            {QStringLiteral("text"), screens::shownYear(year) + QStringLiteral("：") + status->label}};
}

QVariantMap fact(const char* symbol, const QString& text) {
    return {{QStringLiteral("symbol"), QString::fromLatin1(symbol)}, {QStringLiteral("text"), text}};
}

void addFact(QVariantList& facts, const char* symbol, std::int64_t count, const QString& text) {
    if (count > 0) facts += fact(symbol, screens::shownCount(count) + text);
}

QVariantList factsOf(const ArchivedAccount& account) {
    QVariantList facts;
    if (account.knowledge != OriginalKnowledge::known) {
        const MailSum& total = account.shares.total;
        return {fact(
            "archive",
            QStringLiteral("已归档 %1 · %2").arg(shownMessageCount(total.count), shownSize(total.bytes)))};
    }
    addFact(facts, "circle-check", account.shares.removed.count, QStringLiteral(" 封 (已从 Mail 删除)"));
    addFact(facts, "search", account.shares.awaiting.count, QStringLiteral(" 封待核对，核对前不计入"));
    addFact(facts, "cloud", account.undownloaded,
            QStringLiteral(" 封云端未下载,暂不能清理(在 Mail 里下载后才可备份)"));
    addFact(facts, "circle-question-mark", account.shares.pending.count, QStringLiteral(" 封待确认"));
    return facts;
}

QString spokenName(const ArchivedAccount& account) {
    QStringList parts{account.title};
    if (account.knowledge == OriginalKnowledge::known)
        parts += QStringLiteral("可释放 ") + shownSize(account.shares.freeable.bytes);
    for (const QVariant& each : factsOf(account)) parts += each.toMap()[QStringLiteral("text")].toString();
    for (const QVariant& cell : account.cells) {
        const QString text = cell.toMap()[QStringLiteral("text")].toString();
        if (!text.isEmpty()) parts += text;
    }
    return parts.join(u'，');
}

QVariantList cellsOf(const ArchivedOverviewGroup& group, const ArchivedOverviewStats::Group& stats,
                     const std::vector<std::int64_t>& years, OriginalKnowledge knowledge,
                     ArchivedOverviewFilter filter) {
    QVariantList cells;
    std::size_t next = 0;
    for (const std::int64_t year : years) {
        const bool isThere = next < group.years.size() && group.years[next].year == year;
        const std::size_t number = next;
        if (isThere) ++next;
        if (isThere && isListed(stats.years[number], filter)) {
            const YearStatus status = screens::yearStatus(knowledge, stats.years[number]);
            cells += cellOf(year, &status);
        } else {
            cells += cellOf(year, nullptr);
        }
    }
    return cells;
}

} // namespace

QHash<int, QByteArray> ArchivedAccountsModel::roleNames() const {
    return {{TitleRole, "title"},           {FactsRole, "facts"},      {SizeRole, "size"},
            {CountRole, "count"},           {FreesRole, "frees"},      {CellsRole, "cells"},
            {SpokenNameRole, "spokenName"}, {SelectedRole, "selected"}};
}

QVariant ArchivedAccountsModel::value(const ArchivedAccount& account, int role) const {
    const bool frees = account.knowledge == OriginalKnowledge::known && account.shares.freeable.count > 0;
    switch (role) {
    case TitleRole:
        return account.title;
    case FactsRole:
        return factsOf(account);
    case SizeRole:
        return frees ? shownSize(account.shares.freeable.bytes) : QStringLiteral("—");
    case CountRole:
        return frees ? shownMessageCount(account.shares.freeable.count) : QString();
    case FreesRole:
        return frees;
    case CellsRole:
        return account.cells;
    case SpokenNameRole:
        return spokenName(account);
    default:
        return {};
    }
}

void ArchivedAccountsModel::show(const ArchivedOverview& overview, OriginalKnowledge knowledge,
                                 ArchivedOverviewFilter filter) {
    // Without knowledge no year has a status by which it could be left out.
    const auto used = knowledge == OriginalKnowledge::known ? filter : ArchivedOverviewFilter::all;
    const std::vector<std::int64_t> years = yearsOf(*overview.groups);
    Records rows;
    for (std::size_t number = 0; number < overview.groups->size(); ++number) {
        const ArchivedOverviewGroup& group = (*overview.groups)[number];
        const ArchivedOverviewStats::Group& stats = overview.stats.groups[number];
        const auto isListedYear = [&](const auto& year) { return isListed(year, used); };
        if (used != ArchivedOverviewFilter::all && std::ranges::none_of(stats.years, isListedYear)) continue;
        rows.push_back({.key = group.key,
                        .title = screens::shownLine(group.title),
                        .shares = screens::archivedShares(group, stats),
                        .undownloaded = stats.undownloaded,
                        .knowledge = knowledge,
                        .cells = cellsOf(group, stats, years, knowledge, used)});
    }
    replace(std::move(rows));
}

} // namespace corvane
