#include "listing/deletion/deletion_safety.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "listing/account_titles.h"

namespace corvane {

void ProofCounts::add(ProofOutcome outcome, std::int64_t count) {
    switch (outcome) {
    case ProofOutcome::proven:
        proven += count;
        break;
    case ProofOutcome::differs:
        differs += count;
        break;
    case ProofOutcome::fileMissing:
        fileMissing += count;
        break;
    case ProofOutcome::unreadable:
        unreadable += count;
        break;
    case ProofOutcome::incomplete:
        incomplete += count;
        break;
    case ProofOutcome::notLookedAt:
        break;
    }
}

void ProofCounts::add(const ProofCounts& other) {
    proven += other.proven;
    differs += other.differs;
    fileMissing += other.fileMissing;
    unreadable += other.unreadable;
    incomplete += other.incomplete;
}

void ArchivedState::tally(const MailMessageRecord& message, LocalTally& tally) const {
    tally.local += 1;
    const bool isSetAside = !setAsideIDs.empty() && setAsideIDs.contains(message.id);
    const ProofVerdict* const against = proofs.against.empty() ? nullptr : proofs.verdictAgainst(message.id);
    tally.setAside += isSetAside ? 1 : 0;
    if (against != nullptr) {
        tally.proofs.add(against->outcome);
    } else if (archivedIDs.contains(message.id)) {
        tally.archived += 1;
        tally.proofs.proven += proofs.provenIDs->contains(message.id) ? 1 : 0;
    }
}

TallyByAccount tallyMessages(const TallyInputs& input) {
    TallyByAccount tallies;
    for (const MailMessageRecord& message : input.messages) {
        if (!input.locallyAvailableIDs.contains(message.id)) continue;
        const std::string_view key = accountGroupKey(message);
        auto account = tallies.find(key);
        if (account == tallies.end()) account = tallies.emplace(key, TallyByYear()).first;
        input.archived.tally(message, account->second[yearIn(input.yearByID, message)]);
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

std::int64_t IndexedYears::partialCount(const std::optional<std::string>& lookedAt,
                                        const std::set<std::int64_t>& years) const {
    std::int64_t sum = 0;
    if (partialByAccount == nullptr) return sum;
    for (const auto& [key, counted] : *partialByAccount) {
        if (!counts(key, lookedAt)) continue;
        for (const auto& [year, count] : counted) sum += years.empty() || years.contains(year) ? count : 0;
    }
    return sum;
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
            safety.proofs.add(tally.proofs);
            safety.setAside += tally.setAside;
        }
    }
    std::int64_t known = 0;
    for (const auto& [year, count] : indexed.countsByYear(accountKey)) {
        if (years.empty() || years.contains(year)) known += count;
    }
    safety.serverOnly = std::max<std::int64_t>(0, known - safety.local);
    safety.partial = indexed.partialCount(accountKey, years);
    return safety;
}

} // namespace corvane
