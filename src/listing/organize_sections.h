// What the organize home shows of the messages: the candidates by account, year and folder, and how much of
// each account and year is archived. Pure values, made in the background in one pass over the messages and
// shared.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include "listing/message_statistics.h"
#include "listing/space_usage.h"
#include "records/mail_account.h"
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

// How far one account is archived.
struct OrganizeAccountTally {
    struct Year {
        std::int64_t local = 0;
        std::int64_t archived = 0;
    };

    std::string key;
    std::string title;
    std::int64_t localBytes = 0;
    std::map<std::int64_t, Year> years;
};

struct OrganizeOverview {
    std::vector<OrganizeAccountYearSection> sections; // in the order of `accounts`
    std::vector<OrganizeAccountTally> accounts;       // most local bytes first, then by title
    bool hasMessages = false; // false: made of statistics alone, without ids, folders and what is archived

    [[nodiscard]] std::int64_t candidateCount() const;
};

using SharedOrganizeOverview = std::shared_ptr<const OrganizeOverview>;

struct OrganizeInput {
    SharedMessageList messages;
    std::shared_ptr<const SharedTextSet> locallyAvailableIDs;
    std::shared_ptr<const SharedTextSet> archivedMessageIDs;
    std::shared_ptr<const YearByID> yearByID;
    // The smallest size is none of this: it is a choice for one run.
    std::optional<std::int64_t> maximumYear;
    std::vector<MailAccount> accounts;
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

// What the index knows by year, for the part that only the server has.
struct IndexedYears {
    const CountByYear& all;
    const CountByAccountAndYear& byAccount;
    const std::set<std::string>& selectedAccountPrefixes; // empty: all

    // Whether an account counts, when one is looked at and when none is.
    [[nodiscard]] bool counts(const std::string& key, const std::optional<std::string>& lookedAt) const {
        if (lookedAt) return *lookedAt == key;
        return selectedAccountPrefixes.empty() || selectedAccountPrefixes.contains(key);
    }

    // The sum of the accounts that count.
    [[nodiscard]] CountByYear countsByYear(const std::optional<std::string>& lookedAt) const;
};

namespace screens {

// Null when stopped.
SharedOrganizeOverview computeOrganizeYearSections(const OrganizeInput& input,
                                                   const std::stop_token& stop = {});

// What the statistics of a cold start tell before the messages are there.
SharedOrganizeOverview organizeOverviewOfStatistics(const std::vector<AccountYearStatGroup>& groups);

// The same figures as CorvaneViewModel::deletionSafety, made from the tallies. Empty years mean all.
DeletionSafety deletionSafetyOf(const OrganizeOverview& overview,
                                const std::optional<std::string>& accountKey,
                                const std::set<std::int64_t>& years, const IndexedYears& indexed);

} // namespace screens

} // namespace corvane
