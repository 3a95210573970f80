#include "screens/mails/listed_counts.h"

#include <optional>
#include <string_view>

#include "listing/account_titles.h"

namespace corvane {

namespace {

ListedCounts::Account& accountOf(ListedCounts& counts, const MailMessageRecord& message) {
    const std::string_view key = accountFilterKey(message);
    auto account = counts.byAccount.find(key);
    if (account == counts.byAccount.end()) {
        account = counts.byAccount.emplace(key, ListedCounts::Account()).first;
        if (message.accountName) account->second.name = *message.accountName;
    }
    return account->second;
}

// The rules but for those that have counts.
ListRules rulesOfOthers(ListRules rules) {
    rules.accountPrefixes.clear();
    rules.years.clear();
    rules.onlyTroubled = false;
    return rules;
}

} // namespace

ListedCounts listedCounts(const ListInput& input, const ListRules& rules, const std::stop_token& stop) {
    const ListRules others = rulesOfOthers(rules);
    ListedCounts counts;
    for (const MailMessageRecord& message : *input.messages) {
        if (stop.stop_requested()) break;
        if (!input.locallyAvailableIDs->contains(message.id)) continue;
        ListedCounts::Account& account = accountOf(counts, message);
        account.bytes += message.messageSize;
        const auto year = input.yearByID->find(message.id);
        const bool isDated = year != input.yearByID->end();
        std::int64_t* const ofYear = isDated ? &counts.byYear[year->second] : nullptr;
        if (!passesRules(message, input, others)) continue;
        const bool isTroubled = input.troubledIDs->contains(message.id);
        const bool isInAccount = rules.accountPrefixes.empty() ||
                                 rules.accountPrefixes.contains(std::string(accountFilterKey(message)));
        const bool isInYear = rules.years.empty() || (isDated && rules.years.contains(year->second));
        const bool isWanted = !rules.onlyTroubled || isTroubled;
        account.count += isInYear && isWanted ? 1 : 0;
        if (ofYear != nullptr) *ofYear += isInAccount && isWanted ? 1 : 0;
        counts.troubled += isInAccount && isInYear && isTroubled ? 1 : 0;
    }
    return counts;
}

} // namespace corvane
