#include "model/library/overview/overview_inputs.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace corvane {

namespace {

bool isReady(const OverviewSources& sources, const ProofInputs& proofs) {
    const CatalogState& mail = *sources.catalog.state();
    const bool isMailKnown = mail.isAvailabilityKnown && !mail.isPartial() && !mail.set->messages->empty();
    return isMailKnown && mail.availability->proofs->inputs == proofs &&
           !sources.presence.archivedOriginalPresenceChecking() &&
           sources.presence.presence()->entries == sources.libraryIndex.index()->input().entries;
}

// A scan of some accounts lists nothing of the others; it sums up by name what it was of. Of accounts with
// one name all were scanned, or nobody knows which.
std::set<std::string> unscannedAccounts(const std::vector<MailAccount>& accounts,
                                        const std::vector<std::string>& scannedNames) {
    std::set<std::string> unscanned;
    if (scannedNames.empty()) return unscanned; // every account
    for (const MailAccount& account : accounts) {
        const std::string& name = scannedName(account);
        if (std::ranges::count(scannedNames, name) < std::ranges::count(accounts, name, &scannedName))
            unscanned.insert(account.urlPrefix);
    }
    return unscanned;
}

} // namespace

OverviewInputs overviewInputs(const OverviewSources& sources, const ProofInputs& proofs) {
    const SharedCatalogState& mail = sources.catalog.state();
    const CountByAccountAndYear& partial = sources.counts.partialYearCountsByAccount();
    const CountByAccountAndYear& undownloaded = sources.counts.undownloadedYearCountsByAccount();
    return {.index = sources.libraryIndex.index(),
            .presence = sources.presence.presence(),
            .messages = mail->set,
            .availability = mail->availability,
            .undownloadedYearCounts = {undownloaded.begin(), undownloaded.end()},
            .partialYearCounts = {partial.begin(), partial.end()},
            .unscannedAccounts =
                unscannedAccounts(sources.accounts.availableAccounts(), mail->summary.accountNames),
            .isReady = isReady(sources, proofs)};
}

} // namespace corvane
