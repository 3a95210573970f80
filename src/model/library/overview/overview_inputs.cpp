#include "model/library/overview/overview_inputs.h"

#include <set>
#include <string>

namespace corvane {

namespace {

bool isReady(const OverviewSources& sources, const ProofInputs& proofs) {
    const CatalogState& mail = *sources.catalog.state();
    const bool isMailKnown = mail.isAvailabilityKnown && !mail.isPartial() && !mail.set->messages->empty();
    return isMailKnown && mail.availability->proofs->inputs == proofs &&
           !sources.presence.archivedOriginalPresenceChecking() &&
           sources.presence.presence()->entries == sources.libraryIndex.index()->input().entries;
}

// A scan of some accounts lists nothing of the others.
std::set<std::string> unscannedAccounts(const AccountDirectory& accounts) {
    const std::set<std::string>& selected = accounts.selectedAccountPrefixes();
    std::set<std::string> unscanned;
    if (selected.empty()) return unscanned;
    for (const MailAccount& account : accounts.availableAccounts()) {
        if (!selected.contains(account.urlPrefix)) unscanned.insert(account.urlPrefix);
    }
    return unscanned;
}

} // namespace

OverviewInputs overviewInputs(const OverviewSources& sources, const ProofInputs& proofs) {
    const SharedCatalogState& mail = sources.catalog.state();
    const CountByAccountAndYear& undownloaded = sources.counts.undownloadedYearCountsByAccount();
    return {.index = sources.libraryIndex.index(),
            .presence = sources.presence.presence(),
            .messages = mail->set,
            .availability = mail->availability,
            .undownloadedYearCounts = {undownloaded.begin(), undownloaded.end()},
            .unscannedAccounts = unscannedAccounts(sources.accounts),
            .isReady = isReady(sources, proofs)};
}

} // namespace corvane
