// The background part of a proof: reads what isn't known yet of the copies and the archived files of
// messages, in the order of the disk, and keeps each reading as it goes, so that a proof that was broken off
// goes on where it stopped. It says nothing of outcomes: those follow from the readings.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "listing/availability.h"
#include "listing/proof/proof_sources.h"
#include "model/tasks/task_slot.h"
#include "platform/files/layers/file_layer.h"
#include "records/archived/proof_facts.h"
#include "records/mail_message_record.h"
#include "records/stores/app_support.h"

namespace corvane {

// Which messages are proven; empty sets: all.
struct ProofScope {
    std::set<std::string> accountPrefixes; // keys of the account filter
    std::set<std::int64_t> years;

    // Whether a message belongs to it.
    [[nodiscard]] bool holds(const MailMessageRecord& message, const YearByID& yearByID) const;

    friend bool operator==(const ProofScope&, const ProofScope&) = default;
};

struct ProofProgress {
    std::int64_t completed = 0; // messages, those that were known before included
    std::int64_t total = 0;
    std::int64_t bytesRead = 0; // of both sides

    friend bool operator==(const ProofProgress&, const ProofProgress&) = default;
};

struct ProofJob {
    SharedMessageList messages;
    SharedAvailability availability; // of these messages
    ProofInputs inputs;
    ProofScope scope;
    CorvaneAppSupport support;
};

struct ProofEnd {
    // In the store already. Never null.
    std::shared_ptr<const ReadingBatch> readings = std::make_shared<const ReadingBatch>();
    ProofProgress progress;
    bool wasCancelled = false;
    std::set<std::string> hungPlaces; // roots that didn't answer; an empty one is Mail's store
    bool sawOtherFiles = false;       // archived files aren't as the last look at the archives found them
};

// Reads until all is known that reading can tell, or until it is stopped.
ProofEnd runProof(const ProofJob& job, const ReportingTask<ProofProgress>& task);

} // namespace corvane
