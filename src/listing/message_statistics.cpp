#include "listing/message_statistics.h"

#include <algorithm>
#include <map>
#include <ranges>

#include "listing/account_titles.h"
#include "listing/trash_or_junk.h"
#include "records/timestamps.h"
#include "text/position_table.h"

namespace corvane {

namespace {

std::int64_t knownAttachmentBytes(const MailMessageRecord& message) {
    std::int64_t bytes = 0;
    for (const MailAttachmentRecord& attachment : message.attachments)
        bytes += attachment.estimatedSize.value_or(0);
    return bytes;
}

std::string_view countingKey(const MailMessageRecord& message) {
    const auto& identifier = message.messageIdentifier;
    return identifier && !identifier->empty() ? identifier->view() : message.id.view();
}

// Walks the messages that count, each once.
template <class Visit>
void forEachCountable(const CountedMessages& messages, Visit visit) {
    std::uint32_t highest = 0;
    for (const CountedMessage& counted : messages) highest = std::max(highest, counted.key);
    std::vector<bool> seen(std::size_t{highest} + 1, false);
    for (const CountedMessage& counted : messages) {
        if (counted.isTrashOrJunk || seen[counted.key]) continue;
        seen[counted.key] = true;
        visit(counted);
    }
}

AccountYearStatGroup makeGroup(std::string prefix, std::string name, const CountedMessages& messages) {
    AccountYearStatGroup group{std::move(prefix), std::move(name), computeYearStats(messages), 0, 0};
    for (const YearStat& year : group.years) {
        group.messageCount += year.messageCount;
        group.messageBytes += year.messageBytes;
    }
    return group;
}

} // namespace

MessageRefs allOf(const MessageList& messages) {
    MessageRefs refs;
    refs.reserve(messages.size());
    for (const MailMessageRecord& message : messages) refs.push_back(&message);
    return refs;
}

YearByID computeMessageYears(const MessageList& messages) {
    YearByID years;
    years.reserve(messages.size());
    for (const MailMessageRecord& message : messages) {
        if (message.date) years.emplace(message.id.view(), localYear(*message.date));
    }
    return years;
}

std::optional<std::int64_t> yearIn(const YearByID& years, const MailMessageRecord& message) {
    const auto year = years.find(message.id);
    return year == years.end() ? std::nullopt : std::optional(year->second);
}

CountedMessages countedMessages(const MessageRefs& messages) {
    CountedMessages counted;
    counted.reserve(messages.size());
    PositionTable first;
    first.reserve(messages.size());
    const auto keyAt = [&](PositionTable::Position known) { return countingKey(*messages[known]); };
    TrashOrJunk trashOrJunk;
    for (const MailMessageRecord* message : messages) {
        const auto position = static_cast<PositionTable::Position>(counted.size());
        const std::uint32_t key = first.insert(countingKey(*message), position, keyAt).first;
        const auto year = message->date ? std::optional(localYear(*message->date)) : std::nullopt;
        counted.push_back({message, year, key, trashOrJunk.holds(message->mailbox)});
    }
    return counted;
}

MessageRefs countableMessages(const MessageRefs& messages) {
    MessageRefs countable;
    countable.reserve(messages.size());
    forEachCountable(countedMessages(messages),
                     [&](const CountedMessage& counted) { countable.push_back(counted.message); });
    return countable;
}

std::vector<YearStat> computeYearStats(const CountedMessages& messages) {
    std::map<std::int64_t, YearStat, std::greater<>> byYear;
    forEachCountable(messages, [&](const CountedMessage& counted) {
        if (!counted.year || *counted.year < 1) return;
        const MailMessageRecord& message = *counted.message;
        YearStat& stat = byYear[*counted.year];
        stat.year = *counted.year;
        stat.messageCount += 1;
        stat.withAttachmentCount += message.attachments.empty() ? 0 : 1;
        stat.attachmentCount += static_cast<std::int64_t>(message.attachments.size());
        stat.messageBytes += message.messageSize;
        stat.attachmentBytes += knownAttachmentBytes(message);
    });
    const auto stats = std::views::values(byYear);
    return {stats.begin(), stats.end()};
}

std::vector<YearStat> computeYearStats(const MessageRefs& messages) {
    return computeYearStats(countedMessages(messages));
}

std::vector<AccountYearStatGroup> computeAccountYearStats(const CountedMessages& messages,
                                                          const std::vector<MailAccount>& accounts) {
    std::map<std::string_view, CountedMessages> byAccount;
    for (const CountedMessage& counted : messages)
        byAccount[accountGroupKey(*counted.message)].push_back(counted);
    std::vector<AccountYearStatGroup> groups;
    const auto add = [&](std::string_view key, const CountedMessages& members) {
        if (std::ranges::all_of(members, &CountedMessage::isTrashOrJunk)) return;
        groups.push_back(
            makeGroup(std::string(key), accountTitle(key, accounts, *members.front().message), members));
    };
    for (const MailAccount& account : accounts) {
        if (auto members = byAccount.extract(account.urlPrefix)) add(account.urlPrefix, members.mapped());
    }
    if (auto members = byAccount.extract(unclassifiedAccountKey))
        add(unclassifiedAccountKey, members.mapped());
    for (const auto& [key, members] : byAccount) add(key, members);
    std::stable_sort(groups.begin(), groups.end(), [](const auto& a, const auto& b) {
        return a.messageBytes != b.messageBytes ? a.messageBytes > b.messageBytes
                                                : a.accountName < b.accountName;
    });
    return groups;
}

std::vector<AccountYearStatGroup> computeAccountYearStats(const MessageRefs& messages,
                                                          const std::vector<MailAccount>& accounts) {
    return computeAccountYearStats(countedMessages(messages), accounts);
}

MailScanSummary makeSummary(const MessageRefs& messages, std::int64_t scannedCount) {
    MailScanSummary summary;
    summary.scannedMessages = scannedCount;
    summary.matchedMessages = static_cast<std::int64_t>(messages.size());
    for (const MailMessageRecord* message : messages) {
        summary.attachmentMessages += message->attachments.empty() ? 0 : 1;
        summary.attachments += static_cast<std::int64_t>(message->attachments.size());
        summary.bytes += message->messageSize;
        summary.attachmentBytes += knownAttachmentBytes(*message);
        if (!message->date) continue;
        if (!summary.newestDate || *message->date > *summary.newestDate) summary.newestDate = message->date;
        if (!summary.oldestDate || *message->date < *summary.oldestDate) summary.oldestDate = message->date;
    }
    return summary;
}

bool compareByDate(const MailMessageRecord& a, const MailMessageRecord& b, bool ascending) {
    if (a.date.has_value() != b.date.has_value()) return a.date.has_value();
    if (a.date == b.date) return a.subject < b.subject;
    return ascending ? *a.date < *b.date : *a.date > *b.date;
}

} // namespace corvane
