#include "model/library/overview/overview_state.h"

#include <utility>

#include "listing/proven_entries.h"

namespace corvane {

namespace {

using SharedGroups = std::shared_ptr<const std::vector<ArchivedOverviewGroup>>;

YearCountsByAccount unbackedYearCounts(const AvailabilityResult& availability) {
    YearCountsByAccount counts;
    for (const AccountYearStatGroup& account : availability.unbackedAccountYearStats) {
        YearCounts& years = counts[account.accountPrefix];
        for (const YearStat& year : account.years) years[year.year] += year.messageCount;
    }
    return counts;
}

SharedGroups groupsOf(const SharedLibraryIndex& index, const SharedOverview& earlier) {
    if (earlier && earlier->inputs.index == index) return earlier->groups;
    return std::make_shared<const std::vector<ArchivedOverviewGroup>>(archivedOverviewGroups(*index));
}

ArchivedOverviewFacts factsOf(const OverviewInputs& inputs, std::vector<bool> proven) {
    ArchivedOverviewFacts facts;
    facts.isReady = inputs.isReady;
    facts.presenceUnavailable = inputs.presence->state() == OriginalPresence::State::unavailable;
    const bool isOfTheseEntries = inputs.presence->entries == inputs.index->input().entries;
    facts.presence = [presence = inputs.presence, isOfTheseEntries](EntryPosition position) {
        return isOfTheseEntries ? presence->statusAt(position) : ArchivedOriginalPresenceStatus::unknown;
    };
    facts.isProven = [proven = std::move(proven)](EntryPosition position) { return proven[position]; };
    facts.unbackedYearCounts = unbackedYearCounts(*inputs.availability);
    facts.undownloadedYearCounts = inputs.undownloadedYearCounts;
    facts.unscannedAccounts = inputs.unscannedAccounts;
    return facts;
}

} // namespace

SharedOverview ArchivedOverview::make(OverviewInputs inputs, const SharedOverview& earlier,
                                      const std::stop_token& stop) {
    auto overview = std::make_shared<ArchivedOverview>();
    overview->groups = groupsOf(inputs.index, earlier);
    if (stop.stop_requested()) return nullptr;
    auto proven = provenEntries(inputs.index->entries(), *inputs.messages->messages, *inputs.availability);
    if (stop.stop_requested()) return nullptr;
    const ArchivedOverviewFacts facts = factsOf(inputs, std::move(proven));
    overview->stats = archivedOverviewStats(*inputs.index, *overview->groups, facts);
    overview->inputs = std::move(inputs);
    return overview;
}

} // namespace corvane
