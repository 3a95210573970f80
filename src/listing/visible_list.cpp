#include "listing/visible_list.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "listing/account_titles.h"
#include "listing/message_set.h"
#include "text/case.h"

namespace corvane {

namespace {

bool holdsQuery(std::string_view field, std::string_view query) {
    return text::lowercased(field).find(query) != std::string::npos;
}

bool matchesQuery(const MailMessageRecord& message, std::string_view query) {
    if (query.empty() || holdsQuery(message.subject, query) || holdsQuery(message.sender, query) ||
        holdsQuery(message.recipients, query) || holdsQuery(message.mailbox, query)) {
        return true;
    }
    return std::any_of(
        message.attachments.begin(), message.attachments.end(),
        [&](const MailAttachmentRecord& attachment) { return holdsQuery(attachment.fileName, query); });
}

bool matchesYear(const MailMessageRecord& message, const ListRules& rules, const YearByID& years) {
    if (rules.years.empty() && !rules.newestYear) return true;
    const auto year = years.find(message.id);
    if (year == years.end()) return false;
    if (!rules.years.empty() && !rules.years.contains(year->second)) return false;
    return !rules.newestYear || year->second <= *rules.newestYear;
}

bool matchesMigration(const MailMessageRecord& message, MigratedFilter filter,
                      const SharedTextSet& archived) {
    return filter == MigratedFilter::all ||
           archived.contains(message.id) == (filter == MigratedFilter::onlyMigrated);
}

// What decides the place of most messages, beside each other in memory.
struct Ranked {
    std::int64_t size = 0; // 0 where it doesn't count
    bool isUndated = false;
    std::int64_t date = 0;
    const MailMessageRecord* message = nullptr;

    static Ranked of(const MailMessageRecord& message, const ListRules& rules) {
        const auto ranked = [&](std::int64_t value) { return rules.ascending ? value : ~value; };
        const bool bySize = rules.sortMode == MailSortMode::messageSize;
        return {.size = bySize ? ranked(message.messageSize) : 0,
                .isUndated = !message.date,
                .date = message.date ? ranked(message.date->time_since_epoch().count()) : 0,
                .message = &message};
    }

    [[nodiscard]] auto rank() const { return std::tie(size, isUndated, date); }
};

bool sortsBefore(const Ranked& a, const Ranked& b) {
    if (a.rank() != b.rank()) return a.rank() < b.rank();
    return compareByDate(*a.message, *b.message, true);
}

} // namespace

bool passesRules(const MailMessageRecord& message, const ListInput& input, const ListRules& rules) {
    if (!rules.accountPrefixes.empty() &&
        !rules.accountPrefixes.contains(std::string(accountFilterKey(message)))) {
        return false;
    }
    if (static_cast<std::int64_t>(message.attachments.size()) < rules.minimumAttachmentCount) return false;
    if (rules.onlyTroubled && !input.troubledIDs->contains(message.id)) return false;
    return matchesYear(message, rules, *input.yearByID) &&
           matchesMigration(message, rules.migrated, *input.archivedMessageIDs) &&
           matchesQuery(message, rules.query);
}

SharedMessageList makeVisibleMessages(const ListInput& input, const ListRules& rules,
                                      const std::stop_token& stop) {
    std::vector<Ranked> kept;
    kept.reserve(input.messages->size());
    const bool areAllLocal = areAllAvailable(*input.messages, *input.locallyAvailableIDs);
    for (const MailMessageRecord& message : *input.messages) {
        if (stop.stop_requested()) return nullptr;
        const bool isLocal = areAllLocal || input.locallyAvailableIDs->contains(message.id);
        if (isLocal && passesRules(message, input, rules)) kept.push_back(Ranked::of(message, rules));
    }
    const bool isInOrder = std::is_sorted(kept.begin(), kept.end(), sortsBefore);
    if (isInOrder && kept.size() == input.messages->size()) return input.messages;
    if (!isInOrder) std::stable_sort(kept.begin(), kept.end(), sortsBefore);
    MessageList list;
    list.reserve(kept.size());
    for (const Ranked& ranked : kept) list.push_back(*ranked.message);
    return std::make_shared<const MessageList>(std::move(list));
}

} // namespace corvane
