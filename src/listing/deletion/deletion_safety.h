// How many originals are archived, and how many of them may be deleted by hand: the one place that makes this
// number. Everybody tallies the messages of this machine by account and year first, and the number comes from
// the tallies, whoever asks. Pure functions, linear in the messages.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "listing/message_statistics.h"
#include "listing/proof/proof_table.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

using CountByYear = std::map<std::int64_t, std::int64_t>;
using CountByAccountAndYear = std::map<std::string, CountByYear>;

// Messages on this machine that an archive has by their id, by what their proof has come to.
struct ProofCounts {
    std::int64_t proven = 0;
    std::int64_t differs = 0;
    std::int64_t fileMissing = 0;
    std::int64_t unreadable = 0;
    std::int64_t incomplete = 0;

    void add(ProofOutcome outcome, std::int64_t count = 1);
    void add(const ProofCounts& other);

    friend bool operator==(const ProofCounts&, const ProofCounts&) = default;
};

struct DeletionSafety {
    std::int64_t local = 0;      // messages with a local file
    std::int64_t archived = 0;   // those of them that an archive holds, and that nothing stands against
    std::int64_t serverOnly = 0; // messages the index knows beyond the local ones
    ProofCounts proofs{};
    std::int64_t setAside = 0; // of the local ones
    std::int64_t partial = 0;  // of the server's, those that Mail holds in part

    // Of which nothing is on this machine.
    [[nodiscard]] std::int64_t serverAlone() const { return std::max<std::int64_t>(0, serverOnly - partial); }

    [[nodiscard]] std::int64_t notLookedAt() const { return archived - proofs.proven; }

    // All that is here was compared with its archived copy, byte for byte: the originals may go. Not beside
    // mail that is here in part.
    [[nodiscard]] bool isDeletable() const { return local > 0 && proofs.proven == local && partial == 0; }

    friend bool operator==(const DeletionSafety&, const DeletionSafety&) = default;
};

// Messages on this machine, and those of them that are archived. A message that isn't on this machine is
// never added, so it can't count as archived either.
struct LocalTally {
    std::int64_t local = 0;
    std::int64_t archived = 0;
    ProofCounts proofs{};
    std::int64_t setAside = 0;
};

using TallyByYear = std::map<std::optional<std::int64_t>, LocalTally>;  // absent: messages without a date
using TallyByAccount = std::map<std::string, TallyByYear, std::less<>>; // by the key of the account filter

// What is known of the messages of one list, by their ids. Refers to its makings.
struct ArchivedState {
    const SharedTextSet& archivedIDs;
    const SharedTextSet& setAsideIDs;
    const ProofTable& proofs;

    // Adds a message that is on this machine.
    void tally(const MailMessageRecord& message, LocalTally& tally) const;
};

struct TallyInputs {
    const MessageList& messages;
    const SharedTextSet& locallyAvailableIDs;
    ArchivedState archived;
    const YearByID& yearByID;
};

// The tallies of all messages.
TallyByAccount tallyMessages(const TallyInputs& input);

// What the index knows by year, for the part that only the server has. Refers to its makings.
struct IndexedYears {
    const CountByYear& all;
    const CountByAccountAndYear& byAccount;
    const std::set<std::string>& selectedAccountPrefixes;    // empty: all
    const CountByAccountAndYear* partialByAccount = nullptr; // what Mail holds in part; null: none

    // Whether an account counts, when one is looked at and when none is.
    [[nodiscard]] bool counts(const std::string& key, const std::optional<std::string>& lookedAt) const {
        if (lookedAt) return *lookedAt == key;
        return selectedAccountPrefixes.empty() || selectedAccountPrefixes.contains(key);
    }

    // The sum of the accounts that count.
    [[nodiscard]] CountByYear countsByYear(const std::optional<std::string>& lookedAt) const;

    // What Mail holds in part of the accounts that count, in some years, or in all when `years` is empty.
    [[nodiscard]] std::int64_t partialCount(const std::optional<std::string>& lookedAt,
                                            const std::set<std::int64_t>& years) const;
};

// Of one account, or of the selected ones without one, and of some years, or of all when `years` is empty. A
// message without a date is in no year.
DeletionSafety deletionSafety(const TallyByAccount& tallies, const std::optional<std::string>& accountKey,
                              const std::set<std::int64_t>& years, const IndexedYears& indexed);

} // namespace corvane
