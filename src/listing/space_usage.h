// What each account occupies on this machine, with its largest senders, and what a set of years would lose if
// its originals were deleted. Pure functions, linear in the messages.
#pragma once

#include <cstdint>
#include <map>
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

struct DeletionSafety {
    std::int64_t local = 0;      // messages with a local file
    std::int64_t archived = 0;   // those of them that an archive holds: what may be deleted by hand
    std::int64_t serverOnly = 0; // messages the index knows beyond the local ones

    friend bool operator==(const DeletionSafety&, const DeletionSafety&) = default;
};

using CountByYear = std::map<std::int64_t, std::int64_t>;
using CountByAccountAndYear = std::map<std::string, CountByYear>;

struct DeletionSafetyInput {
    const MessageList& messages;
    const SharedTextSet& locallyAvailableIDs;
    const SharedTextSet& archivedBaseIDs;
    const YearByID& yearByID;
    const std::set<std::string>& selectedAccountPrefixes; // empty: all
    const CountByYear& indexedYearCounts;
    const CountByAccountAndYear& indexedYearCountsByAccount;
};

// Empty years mean all.
DeletionSafety deletionSafety(const DeletionSafetyInput& input, const std::set<std::int64_t>& years);

} // namespace corvane
