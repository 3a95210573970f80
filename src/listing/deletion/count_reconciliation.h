// What the index counts beside what a scan brought in, by account and year, as lines of the log for support.
#pragma once

#include <string>
#include <vector>

#include "listing/deletion/deletion_safety.h"
#include "records/statistics_records.h"

namespace corvane {

// Messages by year as the index counts them; years with none may be missing.
struct IndexedCounts {
    const CountByYear& byYear;
    const CountByAccountAndYear& byAccount;
};

// Messages by year that a scan found on the disk, and those of them that can be archived.
struct ScannedCounts {
    const std::vector<YearStat>& downloaded;
    const std::vector<AccountYearStatGroup>& downloadedByAccount;
    const std::vector<AccountYearStatGroup>& candidatesByAccount;
};

// A line of the sums, then one for each account and year whose index count isn't what was downloaded.
[[nodiscard]] std::vector<std::string> reconciliationLines(const IndexedCounts& indexed,
                                                           const ScannedCounts& scanned);

} // namespace corvane
