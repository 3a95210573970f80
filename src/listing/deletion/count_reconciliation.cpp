#include "listing/deletion/count_reconciliation.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

#include <fmt/format.h>

namespace corvane {

namespace {

CountByAccountAndYear countsOf(const std::vector<AccountYearStatGroup>& groups) {
    CountByAccountAndYear counts;
    for (const AccountYearStatGroup& group : groups) {
        CountByYear& years = counts[group.accountPrefix];
        for (const YearStat& stat : group.years) years[stat.year] += stat.messageCount;
    }
    return counts;
}

std::int64_t countIn(const CountByAccountAndYear& counts, const std::string& account, std::int64_t year) {
    const auto years = counts.find(account);
    if (years == counts.end()) return 0;
    const auto count = years->second.find(year);
    return count == years->second.end() ? 0 : count->second;
}

std::string sumLine(const CountByYear& indexed, const std::vector<YearStat>& downloaded) {
    std::int64_t indexedTotal = 0;
    std::int64_t downloadedTotal = 0;
    for (const auto& [year, count] : indexed) indexedTotal += count;
    for (const YearStat& stat : downloaded) downloadedTotal += stat.messageCount;
    return fmt::format("[reconcile] indexedTotal={} downloadedTotal(yearStats)={} indexedOnly={}",
                       indexedTotal, downloadedTotal,
                       std::max<std::int64_t>(0, indexedTotal - downloadedTotal));
}

} // namespace

std::vector<std::string> reconciliationLines(const IndexedCounts& indexed, const ScannedCounts& scanned) {
    std::vector<std::string> lines = {sumLine(indexed.byYear, scanned.downloaded)};
    const CountByAccountAndYear downloaded = countsOf(scanned.downloadedByAccount);
    const CountByAccountAndYear candidates = countsOf(scanned.candidatesByAccount);
    std::set<std::pair<std::string, std::int64_t>> places;
    for (const CountByAccountAndYear* counts : {&indexed.byAccount, &downloaded}) {
        for (const auto& [account, years] : *counts) {
            for (const auto& [year, count] : years) places.emplace(account, year);
        }
    }
    for (const auto& [account, year] : places) {
        const std::int64_t inIndex = countIn(indexed.byAccount, account, year);
        const std::int64_t onDisk = countIn(downloaded, account, year);
        if (inIndex == onDisk) continue;
        lines.push_back(fmt::format("[reconcile] {}[{}] indexed={} downloaded={} candidate={}", account, year,
                                    inIndex, onDisk, countIn(candidates, account, year)));
    }
    return lines;
}

} // namespace corvane
