#include "listing/deletion_safety.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "listing/account_titles.h"
#include "records/stable_id.h"

namespace corvane {

TallyByAccount tallyMessages(const TallyInputs& input) {
    TallyByAccount tallies;
    for (const MailMessageRecord& message : input.messages) {
        if (!input.locallyAvailableIDs.contains(message.id)) continue;
        const std::string_view key = accountGroupKey(message);
        auto account = tallies.find(key);
        if (account == tallies.end()) account = tallies.emplace(key, TallyByYear()).first;
        account->second[yearIn(input.yearByID, message)].add(
            input.archivedBaseIDs.contains(stableID(message)));
    }
    return tallies;
}

CountByYear IndexedYears::countsByYear(const std::optional<std::string>& lookedAt) const {
    if (!lookedAt && selectedAccountPrefixes.empty()) return all;
    CountByYear sums;
    for (const auto& [key, years] : byAccount) {
        if (!counts(key, lookedAt)) continue;
        for (const auto& [year, count] : years) sums[year] += count;
    }
    return sums;
}

DeletionSafety deletionSafety(const TallyByAccount& tallies, const std::optional<std::string>& accountKey,
                              const std::set<std::int64_t>& years, const IndexedYears& indexed) {
    DeletionSafety safety;
    for (const auto& [key, tallyByYear] : tallies) {
        if (!indexed.counts(key, accountKey)) continue;
        for (const auto& [year, tally] : tallyByYear) {
            if (!years.empty() && !(year && years.contains(*year))) continue;
            safety.local += tally.local;
            safety.archived += tally.archived;
        }
    }
    std::int64_t known = 0;
    for (const auto& [year, count] : indexed.countsByYear(accountKey)) {
        if (years.empty() || years.contains(year)) known += count;
    }
    safety.serverOnly = std::max<std::int64_t>(0, known - safety.local);
    return safety;
}

} // namespace corvane
