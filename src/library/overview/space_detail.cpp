#include "library/overview/space_detail.h"

#include <fmt/format.h>

#include "records/texts/formatters.h"

namespace corvane {

namespace {

std::string grouped(std::int64_t number) {
    std::string digits = fmt::format("{}", number);
    for (std::size_t place = digits.size(); place > 3; place -= 3) digits.insert(place - 3, ",");
    return digits;
}

} // namespace

void SpaceSenderTicks::toggle(std::string_view senderKey) {
    const auto ticked = selected_.find(senderKey);
    if (ticked == selected_.end()) {
        selected_.emplace(senderKey);
    } else {
        selected_.erase(ticked);
    }
}

void SpaceSenderTicks::prune(const SpaceAccountUsage& account) {
    std::set<std::string, std::less<>> kept;
    for (const SpaceSenderStat& sender : account.topSenders) {
        if (isTicked(sender.senderKey)) kept.insert(sender.senderKey);
    }
    selected_ = std::move(kept);
}

SpaceSenderTicks::Sum SpaceSenderTicks::sumIn(const SpaceAccountUsage& account) const {
    Sum sum;
    for (const SpaceSenderStat& sender : account.topSenders) {
        if (!isTicked(sender.senderKey)) continue;
        sum.senders += 1;
        sum.messages += sender.messageCount;
        sum.bytes += sender.bytes;
    }
    return sum;
}

SharedTextSet SpaceSenderTicks::messageIDs(
    const std::function<std::vector<SharedText>(const std::string& senderKey)>& idsOf) const {
    SharedTextSet ids;
    for (const std::string& sender : selected_) {
        for (SharedText& id : idsOf(sender)) ids.insert(std::move(id));
    }
    return ids;
}

std::string spaceDetailCountLine(const SpaceAccountUsage& account) {
    std::string messages = fmt::format("{} 封 · {} · 本机可备份", grouped(account.localCount),
                                       formatByteCount(account.localBytes));
    if (account.topSenders.empty()) return messages;
    return fmt::format("{} 个发件人 · {}", grouped(static_cast<std::int64_t>(account.topSenders.size())),
                       messages);
}

} // namespace corvane
