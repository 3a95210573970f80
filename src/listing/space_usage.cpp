#include "listing/space_usage.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <ranges>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "listing/account_titles.h"
#include "records/name_and_address.h"
#include "text/case.h"
#include "text/trim.h"

namespace corvane {

namespace {

constexpr std::size_t senderLimit = 200;

bool holdsAt(std::string_view text) {
    return text.find('@') != std::string_view::npos;
}

// The senders of one account, each sender's text taken apart once.
class SenderTable {
  public:
    void add(const MailMessageRecord& message) {
        const auto [known, isNew] = partsBySender_.try_emplace(message.sender.view());
        if (isNew) known->second = spaceSenderParts(message.sender);
        const SpaceSenderParts& parts = known->second;
        const auto [entry, isFirst] = statByKey_.try_emplace(parts.key);
        SpaceSenderStat& stat = entry->second;
        if (isFirst) {
            stat.senderKey = parts.key;
            stat.displayName = parts.display;
        } else if (holdsAt(stat.displayName) && !holdsAt(parts.display)) {
            stat.displayName = parts.display;
        }
        stat.messageCount += 1;
        stat.bytes += message.messageSize;
    }

    [[nodiscard]] std::vector<SpaceSenderStat> largest() const {
        const auto values = std::views::values(statByKey_);
        std::vector<SpaceSenderStat> stats(values.begin(), values.end());
        std::sort(stats.begin(), stats.end(), [](const SpaceSenderStat& a, const SpaceSenderStat& b) {
            if (a.bytes != b.bytes) return a.bytes > b.bytes;
            return a.displayName != b.displayName ? a.displayName < b.displayName : a.senderKey < b.senderKey;
        });
        if (stats.size() > senderLimit) stats.resize(senderLimit);
        return stats;
    }

  private:
    std::unordered_map<std::string_view, SpaceSenderParts> partsBySender_;
    std::unordered_map<std::string, SpaceSenderStat> statByKey_;
};

SpaceAccountUsage usageOf(std::string_view key, const MessageRefs& messages,
                          const std::vector<MailAccount>& accounts,
                          const SharedTextSet* locallyAvailableIDs) {
    SpaceAccountUsage usage;
    usage.accountPrefix = key;
    usage.accountName = accountTitle(key, accounts, *messages.front());
    const MailAccount* account = findAccount(key, accounts);
    usage.isIMAP = account != nullptr && account->scheme == "imap";
    SenderTable senders;
    for (const MailMessageRecord* message : messages) {
        if (locallyAvailableIDs != nullptr && !locallyAvailableIDs->contains(message->id)) {
            usage.cloudOnlyCount += 1;
            usage.cloudOnlyBytes += message->messageSize;
            continue;
        }
        usage.localCount += 1;
        usage.localBytes += message->messageSize;
        senders.add(*message);
    }
    usage.topSenders = senders.largest();
    return usage;
}

} // namespace

SpaceSenderParts spaceSenderParts(std::string_view sender) {
    const std::string_view text = text::trimWhitespaceAndNewlines(sender);
    if (const auto parts = nameAndAddress(text)) {
        std::string address = text::lowercased(text::trimBlanks(parts->address));
        const std::string_view display = text::trimCharacters(parts->name, " \"'");
        if (!address.empty()) {
            std::string shown = display.empty() ? address : std::string(display);
            return {std::move(address), std::move(shown)};
        }
    }
    return {text::lowercased(text), std::string(text)};
}

std::vector<SpaceAccountUsage> computeSpaceUsage(const MessageList& messages,
                                                 const SharedTextSet* locallyAvailableIDs,
                                                 const std::vector<MailAccount>& accounts) {
    std::map<std::string_view, MessageRefs> byAccount;
    for (const MailMessageRecord& message : messages) byAccount[accountGroupKey(message)].push_back(&message);
    std::vector<SpaceAccountUsage> usages;
    for (const auto& [key, all] : byAccount) {
        const MessageRefs counted = countableMessages(all);
        if (counted.empty()) continue;
        usages.push_back(usageOf(key, counted, accounts, locallyAvailableIDs));
    }
    std::stable_sort(
        usages.begin(), usages.end(), [](const SpaceAccountUsage& a, const SpaceAccountUsage& b) {
            return a.localBytes != b.localBytes ? a.localBytes > b.localBytes : a.accountName < b.accountName;
        });
    return usages;
}

SharedTextSet localMessageIDs(const MessageList& messages, const SharedTextSet& locallyAvailableIDs,
                              std::string_view accountPrefix,
                              const std::set<std::string, std::less<>>& senderKeys) {
    SharedTextSet ids;
    std::unordered_map<std::string_view, bool> isAsked; // by sender, whose text is taken apart once
    for (const MailMessageRecord& message : messages) {
        if (accountGroupKey(message) != accountPrefix || !locallyAvailableIDs.contains(message.id)) continue;
        const auto [sender, isNew] = isAsked.try_emplace(message.sender.view());
        if (isNew) sender->second = senderKeys.contains(spaceSenderParts(message.sender).key);
        if (sender->second) ids.insert(message.id);
    }
    return ids;
}

} // namespace corvane
