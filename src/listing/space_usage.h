// What each account occupies on this machine, with its largest senders. Pure functions, linear in the
// messages.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "listing/message_statistics.h"
#include "records/mail_account.h"
#include "records/mail_message_record.h"
#include "records/statistics_records.h"
#include "text/shared_text.h"

namespace corvane {

struct SpaceSenderParts {
    std::string key; // the lower-cased address, else the whole text in lower case
    std::string display;

    friend bool operator==(const SpaceSenderParts&, const SpaceSenderParts&) = default;
};

SpaceSenderParts spaceSenderParts(std::string_view sender);

// Without a set of available ids every message counts as local. Most local bytes first, then by name; the 200
// largest senders of each account.
std::vector<SpaceAccountUsage> computeSpaceUsage(const MessageList& messages,
                                                 const SharedTextSet* locallyAvailableIDs,
                                                 const std::vector<MailAccount>& accounts);

// The ids of the messages on this machine that one account has of some senders, by their keys. Linear in the
// messages.
SharedTextSet localMessageIDs(const MessageList& messages, const SharedTextSet& locallyAvailableIDs,
                              std::string_view accountPrefix,
                              const std::set<std::string, std::less<>>& senderKeys);

} // namespace corvane
