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

// How Mail shows the accounts of a group, for who has to choose one of them there.
struct MailNames {
    std::vector<std::string> names; // the group's title where none of its accounts is known
    MailAccountKeys namesakes;      // known accounts, not of the group, that one of the names may lead to
};

MailNames mailNamesOf(const LibraryAccountFilterOption& group, const MailAccountKeys& mailAccounts,
                      const std::vector<MailAccount>& knownAccounts);

} // namespace corvane
