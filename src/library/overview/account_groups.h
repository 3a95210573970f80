// Archived mail by account and mailbox, as the sidebar of the archive shows it, and which accounts of Mail a
// group stands for. Pure functions, linear in the entries, any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "library/library_index.h"
#include "records/account_in_mail.h"

namespace corvane {

struct ArchiveAccountGroup {
    struct MailboxGroup {
        std::string mailbox;
        std::int64_t count = 0;
        std::int64_t bytes = 0;

        friend bool operator==(const MailboxGroup&, const MailboxGroup&) = default;
    };

    // One account that the user put into a group.
    struct BaseAccount {
        std::string key;
        std::string title;
        std::int64_t count = 0;
        std::int64_t bytes = 0;
        std::vector<MailboxGroup> mailboxes;
    };

    std::string key;
    std::string title;
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    std::vector<MailboxGroup> directMailboxes{}; // of mail that none of the base accounts has
    std::vector<MailboxGroup> mailboxes{};       // of all
    std::vector<BaseAccount> baseAccounts{};     // only a group of the user has some
};

// Most mail first, then by title; mailboxes likewise, then by name.
std::vector<ArchiveAccountGroup> archiveAccountGroups(const ArchiveLibraryIndex& index);

// The keys (`MailAccount::urlPrefix`) of the accounts of Mail that hold the originals of an account's mail:
// those that its records name, and those known ones whose label, or an address that the user gave to the
// group, leads to its key. Empty when there is none of which we know.
using MailAccountKeys = std::set<std::string, std::less<>>;
std::vector<MailAccountKeys>
mailAccountsOfGroups(const ArchiveLibraryIndex& index); // in the order of `accounts()`

// By what somebody finds an account in Mail's own menus.
struct MailName {
    std::string label;  // ours: its address, or the title of its group
    std::string inMail; // as Mail shows it; empty where that is the same, or isn't known

    friend bool operator==(const MailName&, const MailName&) = default;
};

struct MailNames {
    // Of the account that the group is called by, else of all that Mail has; the title where there are none.
    std::vector<MailName> names;
    MailAccountKeys namesakes;  // other accounts that one of the names, as either says, may lead to
    bool isNameUnknown = false; // nothing tells how Mail shows one of the named
};

// `knownAccounts` are those that were read with the list of messages, `inMail` is how Mail has them now.
MailNames mailNamesOf(const ArchiveAccountScope& group, const MailAccountKeys& mailAccounts,
                      const std::vector<MailAccount>& knownAccounts,
                      const std::vector<AccountInMail>& inMail);

} // namespace corvane
