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
    const SharedFoundByMail& found = sources.counts.foundByMail();
    return isMailKnown && mail.availability->proofs->inputs == proofs && sources.counts.isKnown() &&
           !sources.counts.isReading() && found && found->messages == mail.set->messages &&
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

// Nor does anybody know what the index has of an account that it wasn't asked for.
std::set<std::string> unknownAccounts(const OverviewSources& sources, const CatalogState& mail) {
    const std::vector<MailAccount>& accounts = sources.accounts.availableAccounts();
    std::set<std::string> unknown = unscannedAccounts(accounts, mail.summary.accountNames);
    const SharedFoundByMail& found = sources.counts.foundByMail();
    if (!found) return unknown;
    for (const MailAccount& account : accounts) {
        if (std::ranges::find(found->accounts, account.urlPrefix) == found->accounts.end())
            unknown.insert(account.urlPrefix);
    }
    // One that Mail has had since the accounts were read.
    for (const AccountInMail& account : found->inMail.accounts) {
        if (std::ranges::find(accounts, account.urlPrefix, &MailAccount::urlPrefix) == accounts.end())
            unknown.insert(account.urlPrefix);
    }
    return unknown;
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
            .foundByMail = sources.counts.foundByMail(),
            .unscannedAccounts = unknownAccounts(sources, *mail),
            .isReady = isReady(sources, proofs),
            .indexHasFailed = sources.counts.hasFailed()};
}

} // namespace corvane
