// What the organize home shows of the messages: the candidates by account, year and folder, and how much of
// each account and year is archived. Pure values, made in the background in one pass over the messages and
// shared.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "listing/deletion/deletion_safety.h"
#include "listing/message_statistics.h"
#include "records/mail_account.h"
#include "records/statistics_records.h"
#include "text/shared_text.h"

namespace corvane {

// The year under which messages without a date stand.
inline constexpr std::int64_t undatedYear = 0;

struct OrganizeAccountYearSection {
    struct FolderRow {
        std::string key;
        std::string accountKey;
        std::string mailbox;
        std::int64_t year = 0;
        std::int64_t count = 0;
        std::int64_t bytes = 0;
        std::vector<SharedText> messageIDs; // a message stands in one folder only
    };

    struct YearGroup {
        std::string key;
        std::string accountKey;
        std::int64_t year = 0;
        std::int64_t count = 0;
        std::int64_t bytes = 0;
        std::vector<FolderRow> folders; // most messages first, then by name

        // Of all its folders.
        [[nodiscard]] std::vector<SharedText> messageIDs() const;
    };

    std::string key;
    std::string title;
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    std::vector<YearGroup> years; // oldest first, those without a date at the end
};

using OrganizeYearGroup = OrganizeAccountYearSection::YearGroup;
using OrganizeFolderRow = OrganizeAccountYearSection::FolderRow;

// One account of the overview, whether it has candidates or not.
struct OrganizeAccount {
    std::string key;
    std::string title;
    std::int64_t localBytes = 0;
};

struct OrganizeOverview {
    std::vector<OrganizeAccountYearSection> sections; // in the order of `accounts`
    std::vector<OrganizeAccount> accounts;            // most local bytes first, then by title
    TallyByAccount tallies;                           // how far each of the accounts is archived
    bool hasMessages = false; // false: made of statistics alone, without ids, folders and what is archived

    [[nodiscard]] std::int64_t candidateCount() const;
};

using SharedOrganizeOverview = std::shared_ptr<const OrganizeOverview>;

// What the overview is made of; no pointer is null. Equal inputs have an equal overview.
struct OrganizeInput {
    SharedMessageList messages;
    std::shared_ptr<const SharedTextSet> locallyAvailableIDs;
    std::shared_ptr<const SharedTextSet> archivedMessageIDs;
    std::shared_ptr<const YearByID> yearByID;
    // The smallest size that the user sets isn't applied: it is a choice for one run.
    std::optional<std::int64_t> maximumYear;
    std::vector<MailAccount> accounts;
    std::shared_ptr<const SharedTextSet> setAsideIDs = std::make_shared<const SharedTextSet>();
    std::shared_ptr<const SharedTextSet> withheldIDs = std::make_shared<const SharedTextSet>();
    SharedProofTable proofs = std::make_shared<const ProofTable>();

    friend bool operator==(const OrganizeInput&, const OrganizeInput&) = default;
};

// The part of the home that is looked at; absent means all.
struct OrganizeScope {
    std::optional<std::string> accountKey;
    std::optional<std::int64_t> year;

    [[nodiscard]] bool holdsAccount(const std::string& key) const {
        return !accountKey || *accountKey == key;
    }

    [[nodiscard]] bool holdsYear(std::int64_t other) const { return !year || *year == other; }

    friend bool operator==(const OrganizeScope&, const OrganizeScope&) = default;
};

// The overview of all messages on this machine. Null when stopped.
SharedOrganizeOverview computeOrganizeYearSections(const OrganizeInput& input,
                                                   const std::stop_token& stop = {});

// What the statistics of a cold start tell before the messages are there.
SharedOrganizeOverview organizeOverviewOfStatistics(const std::vector<AccountYearStatGroup>& groups);

} // namespace corvane
