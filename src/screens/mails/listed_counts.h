// How many messages the list would hold of each account and year: what stands beside the values of the
// filters. Each filter's counts are within all the others, so that a value says what ticking it would show.
// Pure, linear in the messages.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <stop_token>
#include <string>

#include "listing/visible_list.h"
#include "text/shared_text.h"

namespace corvane {

struct ListedCounts {
    struct Account {
        SharedText name; // as its messages have it, may be empty
        std::int64_t count = 0;
        std::int64_t bytes = 0; // of all its mail, whatever is filtered
    };

    // Every account and year of the mail on this machine, 0 where the filters leave nothing of it.
    std::map<std::string, Account, std::less<>> byAccount; // by the key of the account filter
    std::map<std::int64_t, std::int64_t> byYear;
    std::int64_t troubled = 0; // with a reason why they don't count as archived
};

// Unfinished when stopped.
ListedCounts listedCounts(const ListInput& input, const ListRules& rules, const std::stop_token& stop = {});

} // namespace corvane
