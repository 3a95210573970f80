// What a group would collect if it were made as the user has it before them: how much mail, by which of its
// accounts and addresses, and from which groups it is taken. Pure; linear in the entries, any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "library/accounts/account_merge_rules.h"
#include "records/archived/archive_records.h"
#include "records/mail_account.h"

namespace corvane {

struct CollectionQuestion {
    SharedEntryList entries; // never null
    std::vector<MailAccount> availableAccounts;
    ArchiveAccountMergeRules rules; // as they are now
    std::string formerName;         // of the group that is edited; empty for a new one
    ArchiveAddressCollectionEdit edit;
};

struct CollectionPreview {
    struct Mails {
        std::string key; // a base key, an address or the key of a group
        std::string title;
        std::int64_t count = 0;
        std::int64_t bytes = 0;

        friend bool operator==(const Mails&, const Mails&) = default;
    };

    // All accounts by their base keys, most mail first, and those of the group without any behind them.
    std::vector<Mails> accounts;
    // What the group collects: by its base keys, then by its addresses. A mail counts once.
    std::vector<Mails> parts;
    // Where by-address mail, and accounts that are in another group, stand now. Most mail first.
    std::vector<Mails> sources;
    std::int64_t count = 0;
    std::int64_t bytes = 0;

    friend bool operator==(const CollectionPreview&, const CollectionPreview&) = default;
};

// Absent after a stop. A group without a name yet is counted like any other.
std::optional<CollectionPreview> previewOfCollection(const CollectionQuestion& question,
                                                     const std::stop_token& stop);

} // namespace corvane
