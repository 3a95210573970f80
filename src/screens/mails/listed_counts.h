// How many messages of the list belong to each account and year, before any filter: what stands beside the
// values of the filters. Pure, linear in the messages.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <stop_token>
#include <string>

#include "listing/message_statistics.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

struct ListedCounts {
    struct Account {
        SharedText name; // as its messages have it, may be empty
        std::int64_t count = 0;
        std::int64_t bytes = 0;
    };

    std::map<std::string, Account, std::less<>> byAccount; // by the key of the account filter
    std::map<std::int64_t, std::int64_t> byYear;
    std::int64_t troubled = 0; // with a reason why they don't count as archived
};

// Counts what is on this machine, which is what the list shows. Unfinished when stopped.
ListedCounts listedCounts(const MessageList& messages, const SharedTextSet& locallyAvailableIDs,
                          const YearByID& years, const std::stop_token& stop = {});

} // namespace corvane
