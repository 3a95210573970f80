// Under which account archived mail stands in the library: a key that stays when accounts of Mail come and
// go, and a title for people. Derived from the record, the known accounts and the user's groups.
//
// Immutable once made; any thread. What it answers depends on the record alone, not on the order of asking.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "library/accounts/account_merge_rules.h"
#include "library/accounts/contained_texts.h"
#include "records/archived/archive_records.h"
#include "records/mail_account.h"
#include "text/shared_text.h"

namespace corvane {

struct ArchiveAccountScope {
    std::string key;
    std::string title;

    // The key of a label: "mail-account:" and the label trimmed and in lower case; that of unclassified mail
    // for a blank one.
    static std::string canonicalKey(std::string_view label);

    friend bool operator==(const ArchiveAccountScope&, const ArchiveAccountScope&) = default;
};

inline constexpr std::string_view unclassifiedScopeTitle = "未归类归档";

// The name of a mailbox as it is shown: decoded, without ".mbox".
std::string mailboxDisplayName(std::string_view mailbox);

class ArchiveAccountScopes {
  public:
    ArchiveAccountScopes(const std::vector<MailAccount>& accounts, const ArchiveAccountMergeRules& rules);

    // The scope without the user's groups: by the account's name in the record, else by what is known of its
    // folder and addresses, else that of unclassified mail.
    [[nodiscard]] ArchiveAccountScope keyAndTitle(const ArchivedEmailRecord& record) const;

    // The one local store linked to an account that has the record's folder; nullopt for a record that names
    // its account, and when there is none or more than one.
    [[nodiscard]] std::optional<ArchiveAccountScope>
    externalArchiveFolderOwner(const ArchivedEmailRecord& record) const;

    // The scope with the user's groups. Addresses don't draw mail out of local stores.
    [[nodiscard]] ArchiveAccountScope archiveAccountScope(const ArchivedEmailRecord& record) const;

    // The group that a base key was put into; nullopt when it is in none.
    [[nodiscard]] std::optional<ArchiveAccountScope>
    archiveAccountScopeIfCustomized(std::string_view baseKey) const;

    // The name of the group of which the mail has an address; of several the one that comes first in the
    // order of addresses. Nullopt without one.
    [[nodiscard]] std::optional<std::string> archiveAccountGroupName(const ArchivedEmailRecord& record) const;

  private:
    friend class AccountScopeTable;

    static constexpr std::size_t noAccount = SIZE_MAX;

    // The accounts that a folder's name leads to.
    struct FolderOwners {
        std::size_t localStore = noAccount; // the one linked local store
        std::size_t single = noAccount;     // the one linked account, else the one account
    };

    // Where the scope of a record without an account's name comes from.
    struct Source {
        std::size_t account = noAccount;
        bool byAddress = false; // its label is then the account's address
    };

    struct FolderTable {
        std::unordered_map<std::string, std::vector<std::size_t>, TextHash, TextEqual> byDisplayName;
        std::unordered_map<std::string, std::vector<std::size_t>, TextHash, TextEqual> byRawName;
    };

    [[nodiscard]] FolderOwners ownersOf(std::string_view mailbox) const;
    [[nodiscard]] Source sourceOf(const ArchivedEmailRecord& record, const FolderOwners& owners) const;
    [[nodiscard]] ArchiveAccountScope scopeOf(const Source& source) const;
    [[nodiscard]] ArchiveAccountScope distinguishedScope(std::size_t account) const;

    // Whether the addresses of a record don't matter any more once its base scope is known.
    [[nodiscard]] bool isSettled(const ArchiveAccountScope& base) const;

    std::vector<MailAccount> accounts_;
    const ArchiveAccountMergeRules rules_;
    FolderTable folders_;
    std::vector<std::string> labels_; // of the accounts, by which addresses name them; empty: by none
    ContainedTexts lowerLabels_;
    std::vector<std::string> groupsOfAddresses_; // in the order of `groupAddresses_`
    ContainedTexts groupAddresses_;
};

// The number of each entry's scope, for lists too long to carry texts. Not thread-safe; one for each job.
class AccountScopeTable {
  public:
    // `scopes` must outlive the table.
    explicit AccountScopeTable(const ArchiveAccountScopes& scopes)
      : scopes_(scopes) {}

    // The place in `all()` of the record's scope. The record must outlive the table.
    std::uint32_t numberOf(const ArchivedEmailRecord& record);

    // One entry a key and title; a key may stand there with several titles.
    [[nodiscard]] const std::vector<ArchiveAccountScope>& all() const { return all_; }

  private:
    struct Base {
        std::uint32_t number = 0;
        bool isSettled = false;
    };

    Base baseOf(const ArchivedEmailRecord& record);
    Base makeBase(const ArchiveAccountScope& scope);
    std::uint32_t add(const ArchiveAccountScope& scope);

    const ArchiveAccountScopes& scopes_;
    std::vector<ArchiveAccountScope> all_;
    std::unordered_map<std::string, std::uint32_t> numbers_; // by key, U+0001 and title
    std::unordered_map<std::string_view, Base> baseByName_;  // the account's name in the record
    std::unordered_map<std::uint64_t, Base> baseBySource_;
    std::unordered_map<std::string_view, ArchiveAccountScopes::FolderOwners> ownersByMailbox_;
    std::unordered_map<std::string, std::uint32_t> groups_;
};

} // namespace corvane
