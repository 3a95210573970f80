// Archived mail by account, year and folder: is the backup complete, are the originals still in Mail, and how
// much room would their deletion free? The one place that answers this for the window and the command line.
//
// What frees anything is proven: an original counts only when it is still in Mail and was compared with its
// archived copy, in a year whose every folder may be cleaned. Pure functions, linear in the entries, any
// thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "library/library_index.h"
#include "library/overview/account_groups.h"
#include "records/archived/archive_records.h"

namespace corvane {

struct MailSum {
    std::int64_t count = 0;
    std::int64_t bytes = 0;

    void add(std::int64_t size) {
        count += 1;
        bytes += size;
    }

    MailSum& operator+=(const MailSum& other) {
        count += other.count;
        bytes += other.bytes;
        return *this;
    }

    friend bool operator==(const MailSum&, const MailSum&) = default;
};

enum class ArchivedOverviewRowStatus {
    checking,
    unavailable,
    cleanable,
    incomplete,
    serverUnbacked,
    pendingReview,
    completed,
};

// The status's name in documents for other programs.
std::string_view rawValue(ArchivedOverviewRowStatus status);

enum class ArchivedOverviewFilter { all, cleanable, removed };

struct ArchivedOverviewGroup {
    struct FolderRow {
        std::string accountPrefix; // the group's key
        std::string mailbox;
        std::int64_t year = 0;
        std::int64_t count = 0;
        std::int64_t bytes = 0;
        std::vector<EntryPosition> entries{}; // newest first

        // Unique over all groups.
        [[nodiscard]] std::string key() const;
    };

    struct YearGroup {
        std::string key;
        std::string accountPrefix;
        std::int64_t year = 0;
        std::int64_t count = 0;
        std::int64_t bytes = 0;
        std::vector<FolderRow> folders{}; // most mail first, then by name
    };

    std::string key;
    std::string title;
    std::int64_t count = 0; // mail without a date included
    std::int64_t bytes = 0;
    MailSum undated{};              // stands in no year
    MailAccountKeys mailAccounts{}; // that hold the originals
    std::vector<YearGroup> years{}; // oldest first
};

// Most mail first, then by title.
std::vector<ArchivedOverviewGroup> archivedOverviewGroups(const ArchiveLibraryIndex& index);

using YearCounts = std::map<std::int64_t, std::int64_t>;
using YearCountsByAccount = std::map<std::string, YearCounts>; // by `MailAccount::urlPrefix`

// What is known of Mail when the overview is made.
struct ArchivedOverviewFacts {
    // The scan is shown, the candidates are counted, and no comparison with Mail is at work.
    bool isReady = false;
    // Mail couldn't be asked, and nothing is known from an earlier time.
    bool presenceUnavailable = false;
    bool indexUnavailable = false; // nor how much mail it has
    std::function<ArchivedOriginalPresenceStatus(EntryPosition)> presence;
    std::function<bool(EntryPosition)> isProven;
    // Whether a proven original that is deleted frees room of its own: the same mail in a second archive
    // doesn't.
    std::function<bool(EntryPosition)> freesRoom = [](EntryPosition) { return true; };
    // Mail on this machine that isn't archived, what Mail holds in part and what was set aside included.
    YearCountsByAccount unbackedYearCounts;
    YearCountsByAccount unprovenYearCounts{};   // archived mail on this machine that isn't proven
    YearCountsByAccount undownloadedYearCounts; // that only the server has
    // By the year of receipt, which Mail's own search goes by: mail that the server alone has, and mail on
    // this machine that nobody has listed.
    YearCountsByAccount serverAloneByReceipt{};
    YearCountsByAccount unlistedByReceipt{};
    // Accounts of Mail of whose mail nothing is known, since nobody has listed it.
    std::set<std::string> unscannedAccounts{};
    AccountsInMail inMail{}; // how Mail has its accounts now
};

struct FolderPresence {
    std::int64_t present = 0;
    std::int64_t missing = 0;
    std::int64_t unknown = 0;
    std::int64_t unproven = 0; // of the present ones: they still have to be compared

    friend bool operator==(const FolderPresence&, const FolderPresence&) = default;
};

// The overview's figures, in the order of the groups, their years and folders.
struct ArchivedOverviewStats {
    struct Folder {
        ArchivedOverviewRowStatus status = ArchivedOverviewRowStatus::checking;
        // `incomplete` for no other reason than that originals still have to be compared.
        bool awaitsProof = false;
        FolderPresence presence;
    };

    // Mail that the search in Mail for a year's mail would find beside what may be deleted.
    struct FoundBesides {
        std::int64_t serverAlone = 0;  // with the only copy
        std::int64_t unlisted = 0;     // not in the last scan
        std::int64_t ofNamesakes = 0;  // unproven, of accounts that Mail shows by the same name
        std::int64_t newNamesakes = 0; // such accounts that nobody has listed
        bool areNamesUnknown = false;  // nobody could read how Mail names its accounts

        [[nodiscard]] bool isNothing() const { return *this == FoundBesides(); }

        friend bool operator==(const FoundBesides&, const FoundBesides&) = default;
    };

    struct Year {
        ArchivedOverviewRowStatus status = ArchivedOverviewRowStatus::checking;
        bool isCleanable = false; // every folder is
        FoundBesides besides;     // of a year that is cleanable

        // Everything that the search finds may be deleted.
        [[nodiscard]] bool isOffered() const { return isCleanable && besides.isNothing(); }

        // It is called cleanable, and no search in Mail is given for it.
        [[nodiscard]] bool isLeftOut() const {
            return status == ArchivedOverviewRowStatus::cleanable && !isOffered();
        }

        bool awaitsProof = false; // each folder that is `incomplete` does
        MailSum freeable;         // zero unless it is cleanable
        MailSum repeated;         // further archived copies of what is freeable
        MailSum removed;
        MailSum unknown;
        std::vector<Folder> folders;
    };

    struct Group {
        MailSum freeable;
        MailSum removed;
        MailSum unknown;
        std::int64_t undownloaded = 0;
        std::vector<MailName> mailNames; // for who has to choose one of its accounts in Mail
        std::vector<Year> years;
    };

    MailSum freeable;
    MailSum removed;
    MailSum unknown;
    std::vector<Group> groups;
};

ArchivedOverviewStats archivedOverviewStats(const ArchiveLibraryIndex& index,
                                            const std::vector<ArchivedOverviewGroup>& groups,
                                            const ArchivedOverviewFacts& facts);

// The status of a year by those of its folders; one unsafe folder makes the whole year unsafe.
ArchivedOverviewRowStatus archivedOverviewStatus(const std::vector<ArchivedOverviewStats::Folder>& folders);

// The years of a group that may be cleaned by a search in Mail, in rising order.
std::vector<std::int64_t> overviewCleanableYears(const ArchivedOverviewGroup& group,
                                                 const ArchivedOverviewStats::Group& stats);

// A year that no search in Mail is given for, though it is called cleanable or has only to be compared.
struct LeftOutYear {
    std::int64_t year = 0;
    std::string reason; // for the user, without a full stop
};

std::vector<LeftOutYear> leftOutYears(const ArchivedOverviewGroup& group,
                                      const ArchivedOverviewStats::Group& stats);

// Why a year isn't offered, for the user, without a full stop.
std::string leftOutReason(const ArchivedOverviewStats::Year& year);

// Whether a year is shown under a filter.
bool isShown(const ArchivedOverviewStats::Year& year, ArchivedOverviewFilter filter);

} // namespace corvane
