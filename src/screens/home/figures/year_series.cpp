#include "screens/home/figures/year_series.h"

#include <map>

#include <QVariantMap>

namespace corvane::screens {

std::vector<YearBar> yearBars(const OrganizeOverview& overview, const std::optional<std::string>& accountKey,
                              const std::set<std::int64_t>& tickedYears, const IndexedYears& indexed) {
    std::map<std::int64_t, YearBar> bars;
    for (const auto& [key, tallies] : overview.tallies) {
        if (!indexed.counts(key, accountKey)) continue;
        for (const auto& [year, tally] : tallies) {
            YearBar& bar = bars[year.value_or(undatedYear)];
            bar.archived += tally.archived;
            bar.unarchived += tally.local - tally.archived;
        }
    }
    for (const auto& [year, count] : indexed.countsByYear(accountKey)) {
        const auto known = bars.find(year);
        const std::int64_t local =
            known == bars.end() ? 0 : known->second.archived + known->second.unarchived;
        // What Mail holds in part has a figure of its own.
        const std::int64_t alone = count - local - indexed.partialCount(accountKey, {year});
        if (alone > 0) bars[year].serverOnly = alone;
    }
    bars.erase(undatedYear);
    std::vector<YearBar> sorted;
    for (auto& [year, bar] : bars) {
        bar.year = year;
        bar.hasTicks = tickedYears.contains(year);
        sorted.push_back(bar);
    }
    return sorted;
}

QVariantList chartYears(const std::vector<YearBar>& bars) {
    QVariantList years;
    for (const YearBar& bar : bars) {
        years << QVariantMap{{QStringLiteral("year"), static_cast<int>(bar.year)},
                             {QStringLiteral("archived"), static_cast<int>(bar.archived)},
                             {QStringLiteral("unarchived"), static_cast<int>(bar.unarchived)},
                             {QStringLiteral("serverOnly"), static_cast<int>(bar.serverOnly)},
                             {QStringLiteral("ticked"), bar.hasTicks}};
    }
    return years;
}

} // namespace corvane::screens
