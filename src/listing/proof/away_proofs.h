// Proofs that rest on archives which aren't connected now: they stand, and whoever shows them says from which
// day they are. Pure functions, no look at a disk, any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "listing/proof/proof_table.h"
#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"
#include "records/values.h"

namespace corvane {

using ArchiveRoots = std::set<std::string, std::less<>>;

ArchiveRoots disconnectedRoots(const std::vector<ArchiveLocation>& locations);

// When the archived file was read that the proof of this message rests on; absent for a message that isn't
// proven, and for one whose bytes are also in an archive outside of `awayRoots`.
std::optional<Date> awayProofDate(const ProofTable& proofs, const ArchiveRoots& awayRoots,
                                  const MailMessageRecord& message);

struct AwayProofs {
    std::int64_t count = 0;
    Date oldest{}; // of a count above 0

    friend bool operator==(const AwayProofs&, const AwayProofs&) = default;
};

// Of the messages that belong to it. Linear in the messages.
AwayProofs awayProofs(const ProofTable& proofs, const ArchiveRoots& awayRoots, const MessageList& messages,
                      const std::function<bool(const MailMessageRecord&)>& isLookedAt);

} // namespace corvane
