// All archived mail in order, by account and by thread: what the library's list, its menus and the overview
// are read from. Made in the background once for a list of entries, immutable from then on and shared between
// threads. Inside, entries, accounts and threads are numbers; the texts by which others know them are made
// when somebody asks.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "library/accounts/account_merge_rules.h"
#include "library/accounts/account_scopes.h"
#include "library/filter_options.h"
#include "library/threads/subject_groups.h"
#include "library/threads/thread_keys.h"
#include "records/archived/archive_records.h"
#include "records/mail_account.h"
#include "text/position_table.h"

namespace corvane {

// What an index is made of. Equal inputs have equal indexes.
struct LibraryIndexInput {
    SharedEntryList entries = std::make_shared<const std::vector<ArchivedEntry>>();
    std::vector<MailAccount> availableAccounts{};
    ArchiveAccountMergeRules archiveAccountMergeRules{};
    std::vector<ArchiveLocation> archiveLocations{};

    friend bool operator==(const LibraryIndexInput&, const LibraryIndexInput&) = default;
};

// A short text that changes with nearly every change of the input: of the entries it has the number, the
// first and the last.
std::string archiveLibraryIndexSignature(const LibraryIndexInput& input);

// Groups of a list, and the array in which their members lie.
struct GroupsView {
    std::span<const LibrarySubjectGroup> groups;
    std::span<const EntryPosition> members;

    [[nodiscard]] std::span<const EntryPosition> entries(const LibrarySubjectGroup& group) const {
        return members.subspan(group.first, group.count);
    }
};

enum class LibraryOrder { newestFirst, oldestFirst };

class ArchiveLibraryIndex {
  public:
    // Null after a stop. A list of more than 2^32 - 2 entries throws std::length_error.
    static std::shared_ptr<const ArchiveLibraryIndex> make(LibraryIndexInput input,
                                                           const std::stop_token& stop = {});

    [[nodiscard]] const LibraryIndexInput& input() const { return input_; }

    [[nodiscard]] const std::string& signature() const { return signature_; }

    [[nodiscard]] std::size_t size() const { return entries().size(); }

    [[nodiscard]] const ArchivedEntry& entry(EntryPosition position) const { return entries()[position]; }

    [[nodiscard]] const std::vector<ArchivedEntry>& entries() const { return *input_.entries; }

    // All entries by date, those of one date as they stand in the list; mail without a date is the oldest.
    // The oldest first is the exact reverse.
    [[nodiscard]] std::span<const EntryPosition> sorted(LibraryOrder order) const { return list(order).all; }

    // Of one account, in the same order; empty for a key that none has.
    [[nodiscard]] std::span<const EntryPosition> sortedOfAccount(LibraryOrder order,
                                                                 std::string_view key) const;

    // The threads of these lists.
    [[nodiscard]] GroupsView subjectGroups(LibraryOrder order) const;
    [[nodiscard]] GroupsView subjectGroupsOfAccount(LibraryOrder order, std::string_view key) const;

    [[nodiscard]] const std::string& accountKey(EntryPosition position) const {
        return accounts_[accountOf_[position]].key;
    }

    // The title that the last entry of the account has for it; nullopt for a key that none has.
    [[nodiscard]] std::optional<std::string> accountTitle(std::string_view key) const;

    // The place in `accounts()` of each entry's account.
    [[nodiscard]] const std::vector<std::uint32_t>& accountOf() const { return accountOf_; }

    // The place of a key's account in `accounts()`; nullopt for a key that none has.
    [[nodiscard]] std::optional<std::uint32_t> accountNumber(std::string_view key) const;

    // One a key, in the order of their first entries.
    [[nodiscard]] const std::vector<ArchiveAccountScope>& accounts() const { return accounts_; }

    [[nodiscard]] std::string subjectKey(EntryPosition position) const;

    // "thread:" and the id of the entry that names the thread, "single:" and its own id for mail that stands
    // alone.
    [[nodiscard]] std::string threadKey(EntryPosition position) const;

    [[nodiscard]] const std::vector<EntryPosition>& threadRoots() const { return roots_; }

    [[nodiscard]] const std::vector<LibraryAccountFilterOption>& accountOptions() const {
        return accountOptions_;
    }

    [[nodiscard]] const std::vector<LibraryLocationFilterOption>& locationOptions() const {
        return locationOptions_;
    }

    [[nodiscard]] std::int64_t totalBytes() const { return totalBytes_; }

    // The place of an entry id; nullopt when no entry has it.
    [[nodiscard]] std::optional<EntryPosition> position(std::string_view entryID) const;

  private:
    // One order of all entries, with what is cut out of it.
    struct OrderedList {
        std::vector<EntryPosition> all;
        std::vector<EntryPosition> byAccount;     // account after account
        std::vector<std::uint32_t> accountStarts; // by account, one more at the end
        SubjectGroups groups;
        SubjectGroups groupsByAccount;
        std::vector<std::uint32_t> groupStarts; // by account, one more at the end; in `groupsByAccount`
    };

    explicit ArchiveLibraryIndex(LibraryIndexInput input);

    bool fill(const std::stop_token& stop);
    void findAccounts();
    void mergeTitles(const std::vector<ArchiveAccountScope>& scopes,
                     const std::vector<std::uint32_t>& scopeOf);
    void findThreads(const std::stop_token& stop);
    void findPositions();
    void sortByDate();
    void divide(OrderedList& ordered) const;

    [[nodiscard]] const OrderedList& list(LibraryOrder order) const {
        return order == LibraryOrder::newestFirst ? newest_ : oldest_;
    }

    [[nodiscard]] std::string entryID(EntryPosition position) const { return entry(position).id(); }

    LibraryIndexInput input_;
    std::string signature_;
    std::vector<ArchiveAccountScope> accounts_;
    PositionTable accountByKey_;
    std::vector<std::uint32_t> accountOf_;
    std::vector<EntryPosition> roots_;
    std::vector<bool> isThread_; // by root: it has several members
    PositionTable positionByID_;
    OrderedList newest_;
    OrderedList oldest_;
    std::vector<LibraryAccountFilterOption> accountOptions_;
    std::vector<LibraryLocationFilterOption> locationOptions_;
    std::int64_t totalBytes_ = 0;
};

using SharedLibraryIndex = std::shared_ptr<const ArchiveLibraryIndex>;

} // namespace corvane
