// The list of messages that the user sees: those on this machine that pass the filters, in the chosen order.
// Pure, linear in the messages and n log n where they have to be sorted. Any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>

#include "listing/message_statistics.h"
#include "records/mail_message_record.h"
#include "records/model_enums.h"
#include "text/shared_text.h"

namespace corvane {

// The rules of the list as values. The default shows everything, newest first.
struct ListRules {
    std::string query; // trimmed and lower-cased
    std::int64_t minimumAttachmentCount = 0;
    std::set<std::int64_t> years;          // empty: all
    std::set<std::string> accountPrefixes; // keys of the account filter; empty: all
    std::optional<std::int64_t> newestYear;
    MigratedFilter migrated = MigratedFilter::all;
    bool onlyTroubled = false; // those with a reason why they don't count as archived
    MailSortMode sortMode = MailSortMode::newest;
    bool ascending = false;

    friend bool operator==(const ListRules&, const ListRules&) = default;
};

// What the list is made of, none of it null. Equal inputs and rules have an equal list.
struct ListInput {
    SharedMessageList messages;
    std::shared_ptr<const SharedTextSet> locallyAvailableIDs;
    std::shared_ptr<const SharedTextSet> archivedMessageIDs;
    std::shared_ptr<const YearByID> yearByID;
    std::shared_ptr<const SharedTextSet> troubledIDs = std::make_shared<const SharedTextSet>();

    friend bool operator==(const ListInput&, const ListInput&) = default;
};

// Whether a message that is on this machine passes the filters of the rules.
bool passesRules(const MailMessageRecord& message, const ListInput& input, const ListRules& rules);

// Filters and sorts; shares all texts with the input, and is the input's own list where that is the result.
// Null when stopped.
SharedMessageList makeVisibleMessages(const ListInput& input, const ListRules& rules,
                                      const std::stop_token& stop = {});

} // namespace corvane
