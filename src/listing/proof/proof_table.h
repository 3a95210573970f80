// The outcomes of all messages, and what follows from them for lists and figures. Immutable once made, shared
// between threads.
#pragma once

#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>

#include "listing/proof/proof_sources.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

struct ProofTable {
    // False before the archives were looked at: nothing is known for or against any message then.
    bool isKnown = false;
    // Never null.
    std::shared_ptr<const SharedTextSet> provenIDs = std::make_shared<const SharedTextSet>();
    // By message id, those of which something is known against them.
    std::unordered_map<SharedText, ProofVerdict, TextHash, TextEqual> against;
    // Message ids of mail that may be in no archive though one has its id: a copy that was read has the bytes
    // of no record; or, without a Message-ID, a copy was never read while several archived files have its
    // header, and it may have come since. Never null.
    std::shared_ptr<const SharedTextSet> unmatchedIDs = std::make_shared<const SharedTextSet>();
    // Of `inputs.entries`; null while nothing was looked up in them.
    SharedArchivedRecords records;
    ProofInputs inputs; // what it was made of

    // Of a message that an archive has by its id.
    [[nodiscard]] ProofOutcome outcomeOf(std::string_view messageID) const;

    // Null for a message that nothing stands against.
    [[nodiscard]] const ProofVerdict* verdictAgainst(std::string_view messageID) const;
};

using SharedProofTable = std::shared_ptr<const ProofTable>;

// The outcomes of those of the messages that are on this machine and that an archive has by their id. Looks
// at their copies on the disk. `earlier` lends what it has of the same entries; it may be null. Null when
// stopped.
SharedProofTable computeProofTable(const MessageList& messages, const SharedTextSet& availableIDs,
                                   const SharedTextSet& archivedIDs, const ProofInputs& inputs,
                                   const SharedProofTable& earlier, const std::stop_token& stop = {});

} // namespace corvane
