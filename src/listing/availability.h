// The availability run: which messages have a file on this machine, and the statistics that follow from that
// and from what is archived. One pass of a background job over one generation of messages; everything it
// reads and makes is shared and immutable.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "listing/candidates.h"
#include "listing/message_set.h"
#include "listing/message_statistics.h"
#include "listing/proof/proof_table.h"
#include "records/mail_account.h"
#include "records/statistics_records.h"
#include "text/shared_text.h"

namespace corvane {

// What an availability run needs beside the messages. No pointer is null.
struct AvailabilityInputs {
    std::shared_ptr<const SharedTextSet> archivedBaseIDs = std::make_shared<const SharedTextSet>();
    CandidateRules limits; // of size and newest year; the statistics have a row for every account and year
    std::vector<MailAccount> accounts;
    ProofInputs proof{};
    // Stable ids of what the user doesn't want to be archived for now.
    std::shared_ptr<const SharedTextSet> setAside = std::make_shared<const SharedTextSet>();
    // Paths of files that the last run couldn't archive.
    std::shared_ptr<const SharedTextSet> failedPaths = std::make_shared<const SharedTextSet>();
};

// What an availability run finds out.
struct AvailabilityResult {
    std::shared_ptr<const SharedTextSet> locallyAvailableIDs = std::make_shared<const SharedTextSet>();
    std::shared_ptr<const YearByID> yearByID = std::make_shared<const YearByID>();
    // The messages whose stable id is one of these base ids.
    std::shared_ptr<const SharedTextSet> recordedMessageIDs = std::make_shared<const SharedTextSet>();
    // Those of them that share their stable id with others of the list, as mails without a Message-ID can.
    // The record may be another one's: they count as archived only when they are proven.
    std::shared_ptr<const SharedTextSet> ambiguousIDs = std::make_shared<const SharedTextSet>();
    // The recorded ones that nothing stands against: what counts as archived.
    std::shared_ptr<const SharedTextSet> archivedMessageIDs = std::make_shared<const SharedTextSet>();
    SharedProofTable proofs = std::make_shared<const ProofTable>();
    // The messages that the user has set aside.
    std::shared_ptr<const SharedTextSet> setAsideIDs = std::make_shared<const SharedTextSet>();
    // Those, and the ones that are recorded while their files can't be read whole: no candidates, and not
    // archived.
    std::shared_ptr<const SharedTextSet> withheldIDs = std::make_shared<const SharedTextSet>();
    // The messages with a reason why they don't count as archived: what a proof has found or has
    // still to find out, the last run's failures, and what was set aside.
    std::shared_ptr<const SharedTextSet> troubledIDs = std::make_shared<const SharedTextSet>();
    std::shared_ptr<const SharedTextSet> archivedBaseIDs = std::make_shared<const SharedTextSet>();
    std::vector<YearStat> localYearStats;
    std::vector<AccountYearStatGroup> accountYearStats;         // of the local candidates
    std::vector<AccountYearStatGroup> mailAccountYearStats;     // of all messages
    std::vector<AccountYearStatGroup> unbackedAccountYearStats; // of those not archived
    std::int64_t localCount = 0;                                // candidates, with trash and copies
    std::int64_t localBytes = 0;
};

using SharedAvailability = std::shared_ptr<const AvailabilityResult>;

struct AvailabilityJob {
    SharedMessageSet set; // never null
    AvailabilityInputs inputs;
    SharedAvailability known; // of the same set by an earlier run; null when the files have to be looked for
    bool filesWereSeen = false; // by the scan that has just listed them: all are there
    std::string mailVersion{};  // as isOfMailVersion takes it
};

// Whether the message's file lies in that version folder of Mail's store, such as "V10": what an earlier
// version of Mail has left is none of its mail. Empty for any.
bool isOfMailVersion(const MailMessageRecord& message, const std::string& version);

// A file that can't be looked at counts as absent. Absent when stopped.
std::optional<AvailabilityResult> computeAvailability(const AvailabilityJob& job,
                                                      const std::stop_token& stop = {});

// The ids of the messages whose stable id is one of these.
std::shared_ptr<const SharedTextSet> messageIDsOf(const MessageList& messages,
                                                  const SharedTextSet& stableIDs);

// Finds out what is recorded, and what of that is ambiguous.
void setRecorded(AvailabilityResult& result, const MessageList& messages, const SharedTextSet& baseIDs);

// What follows from what is recorded, ambiguous, unmatched, proven and set aside.
std::shared_ptr<const SharedTextSet> archivedIDs(const AvailabilityResult& result);

} // namespace corvane
