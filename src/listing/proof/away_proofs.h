// Proofs that rest on archives which aren't connected now, or on files of which only a cloud provider's
// placeholder is here: they stand, and whoever shows them says from which day they are. Pure functions, no
// look at a disk, any thread.
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

struct AwayProof {
    Date readAt{};          // when the archived file was read that the proof rests on
    bool isInCloud = false; // its archive is connected, the file itself isn't here

    friend bool operator==(const AwayProof&, const AwayProof&) = default;
};

// Absent for a message that isn't proven, and for one whose bytes are also in a file that is here.
std::optional<AwayProof> awayProof(const ProofTable& proofs, const ArchiveRoots& awayRoots,
                                   const MailMessageRecord& message);

struct AwayProofs {
    std::int64_t count = 0;
    std::int64_t inCloud = 0; // of them
    Date oldest{};            // of a count above 0

    friend bool operator==(const AwayProofs&, const AwayProofs&) = default;
};

// Of the messages that belong to it. Linear in the messages.
AwayProofs awayProofs(const ProofTable& proofs, const ArchiveRoots& awayRoots, const MessageList& messages,
                      const std::function<bool(const MailMessageRecord&)>& isLookedAt);

} // namespace corvane
