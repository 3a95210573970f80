// The overview of archived mail as it is published: groups, figures and what they were made of, in one value.
// Immutable, shared between threads; making it is linear in the entries and the messages.
#pragma once

#include <memory>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "library/library_index.h"
#include "library/overview/archived_overview.h"
#include "listing/availability.h"
#include "listing/deletion/found_by_mail.h"
#include "listing/message_set.h"
#include "model/library/presence/original_presence.h"

namespace corvane {

// For the user, where no figure can be given for that reason.
inline constexpr std::string_view mailIndexFailure =
    "无法读取 Mail 的索引，不知道删除会涉及哪些邮件。请确认 Mail 数据可以读取后再试。";

// Equal inputs have equal overviews. No pointer is null.
struct OverviewInputs {
    SharedLibraryIndex index;
    SharedPresence presence;
    SharedMessageSet messages;
    SharedAvailability availability;            // of these messages
    YearCountsByAccount undownloadedYearCounts; // by account
    YearCountsByAccount partialYearCounts{};    // of these, what Mail holds in part
    SharedFoundByMail foundByMail{};            // null before Mail's index was asked
    // Accounts that the list of messages leaves out: nothing is known of their mail.
    std::set<std::string> unscannedAccounts{};
    // Messages, their outcomes, the originals and Mail's index are all known, and of what is archived now.
    bool isReady = false;
    bool indexHasFailed = false; // Mail's index couldn't be asked, or isn't there

    friend bool operator==(const OverviewInputs&, const OverviewInputs&) = default;
};

struct ArchivedOverview {
    OverviewInputs inputs;
    std::shared_ptr<const std::vector<ArchivedOverviewGroup>> groups; // of the index; never null
    ArchivedOverviewStats stats;

    [[nodiscard]] OriginalPresence::State presenceState() const { return inputs.presence->state(); }

    // Lends the groups of `earlier` where they are of the same index; it may be null. Null when stopped.
    static std::shared_ptr<const ArchivedOverview>
    make(OverviewInputs inputs, const std::shared_ptr<const ArchivedOverview>& earlier,
         const std::stop_token& stop = {});
};

using SharedOverview = std::shared_ptr<const ArchivedOverview>;

} // namespace corvane
