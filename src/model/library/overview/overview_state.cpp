#include "model/library/overview/overview_state.h"

#include <algorithm>
#include <string>
#include <utility>

#include "listing/account_titles.h"
#include "listing/deletion/proven_entries.h"
#include "listing/message_statistics.h"

namespace corvane {

namespace {

using SharedGroups = std::shared_ptr<const std::vector<ArchivedOverviewGroup>>;

YearCountsByAccount yearCounts(const CountByAccountAndYear& counts) {
    return {counts.begin(), counts.end()};
}

// Mail of which Mail has only a part isn't archived.
YearCountsByAccount unbackedYearCounts(const OverviewInputs& inputs) {
    YearCountsByAccount counts = inputs.partialYearCounts;
    if (inputs.foundByMail) {
        for (const auto& [account, years] : inputs.foundByMail->partial) {
            for (const auto& [year, count] : years)
                counts[account][year] = std::max(counts[account][year], count);
        }
    }
    for (const AccountYearStatGroup& account : inputs.availability->unbackedAccountYearStats) {
        YearCounts& years = counts[account.accountPrefix];
        for (const YearStat& year : account.years) years[year.year] += year.messageCount;
    }
    return counts;
}

YearCountsByAccount unprovenYearCounts(const MessageList& messages, const AvailabilityResult& known) {
    YearCountsByAccount counts;
    for (const MailMessageRecord& message : messages) {
        if (!known.recordedMessageIDs->contains(message.id) ||
            !known.locallyAvailableIDs->contains(message.id) || known.proofs->provenIDs->contains(message.id))
            continue;
        const auto year = yearIn(*known.yearByID, message);
        if (year) ++counts[std::string(accountFilterKey(message))][*year];
    }
    return counts;
}

// A message belongs to each account and year in which the user's search in Mail finds a copy of it.
void addFoundElsewhere(const OverviewInputs& inputs, ArchivedOverviewFacts& facts) {
    if (!inputs.foundByMail || inputs.foundByMail->elsewhere.empty()) return;
    const AvailabilityResult& known = *inputs.availability;
    for (const MailMessageRecord& message : *inputs.messages->messages) {
        const bool isArchived = known.archivedMessageIDs->contains(message.id);
        if (isArchived && known.proofs->provenIDs->contains(message.id)) continue;
        YearCountsByAccount& counts = isArchived ? facts.unprovenYearCounts : facts.unbackedYearCounts;
        inputs.foundByMail->visitElsewhere(
            message, [&](const std::string& account, std::int64_t year) { ++counts[account][year]; });
    }
}

SharedGroups groupsOf(const SharedLibraryIndex& index, const SharedOverview& earlier) {
    if (earlier && earlier->inputs.index == index) return earlier->groups;
    return std::make_shared<const std::vector<ArchivedOverviewGroup>>(archivedOverviewGroups(*index));
}

ArchivedOverviewFacts factsOf(const OverviewInputs& inputs, std::vector<bool> proven) {
    std::vector<bool> frees =
        freeingEntries(inputs.index->entries(), proven, *inputs.messages->messages, *inputs.availability);
    ArchivedOverviewFacts facts;
    facts.isReady = inputs.isReady;
    facts.presenceUnavailable = inputs.presence->state() == OriginalPresence::State::unavailable;
    facts.indexUnavailable = inputs.indexHasFailed;
    const bool isOfTheseEntries = inputs.presence->entries == inputs.index->input().entries;
    facts.presence = [presence = inputs.presence, isOfTheseEntries](EntryPosition position) {
        return isOfTheseEntries ? presence->statusAt(position) : ArchivedOriginalPresenceStatus::unknown;
    };
    facts.freesRoom = [frees = std::move(frees)](EntryPosition position) { return frees[position]; };
    facts.isProven = [proven = std::move(proven)](EntryPosition position) { return proven[position]; };
    facts.unbackedYearCounts = unbackedYearCounts(inputs);
    facts.unprovenYearCounts = unprovenYearCounts(*inputs.messages->messages, *inputs.availability);
    facts.undownloadedYearCounts = inputs.undownloadedYearCounts;
    facts.unscannedAccounts = inputs.unscannedAccounts;
    addFoundElsewhere(inputs, facts);
    if (inputs.foundByMail) {
        facts.serverAloneByReceipt = yearCounts(inputs.foundByMail->serverAlone);
        facts.unlistedByReceipt = yearCounts(inputs.foundByMail->unlisted);
        facts.inMail = inputs.foundByMail->inMail;
    }
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
