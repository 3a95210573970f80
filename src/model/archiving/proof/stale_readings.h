// Which readings nobody will ask for again: those of mail that Mail has deleted long since, and those of
// files that their archive doesn't name any more. Background work; any thread.
#pragma once

#include "platform/files/layers/file_layer.h"
#include "records/archived/archive_records.h"
#include "records/archived/proof_facts.h"
#include "records/mail_message_record.h"

namespace corvane {

// Where the readings that count now belong to.
struct ReadingOwners {
    SharedEntryList entries;    // of the library
    SharedMessageList messages; // of the last scan
};

// Only readings of more than a month ago: a scan may be limited, and a run is ahead of the library. A copy
// that no message names is looked for on the disk.
ReadingPaths staleReadings(platform::FileLayer& files, const ProofFacts& facts, const ReadingOwners& owners,
                           Date now);

} // namespace corvane
