#include "screens/mails/listed_counts.h"

#include <string_view>

#include "listing/account_titles.h"

namespace corvane {

ListedCounts listedCounts(const MessageList& messages, const SharedTextSet& locallyAvailableIDs,
                          const YearByID& years, const std::stop_token& stop) {
    ListedCounts counts;
    for (const MailMessageRecord& message : messages) {
        if (stop.stop_requested()) break;
        if (!locallyAvailableIDs.contains(message.id)) continue;
        const std::string_view key = accountFilterKey(message);
        auto account = counts.byAccount.find(key);
        if (account == counts.byAccount.end()) {
            account = counts.byAccount.emplace(key, ListedCounts::Account()).first;
            if (message.accountName) account->second.name = *message.accountName;
        }
        ++account->second.count;
        account->second.bytes += message.messageSize;
        const auto year = years.find(message.id);
        if (year != years.end()) ++counts.byYear[year->second];
    }
    return counts;
}

} // namespace corvane
