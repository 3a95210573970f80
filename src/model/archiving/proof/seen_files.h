// What a look at the archives says against readings that are kept. An archived file that is gone, or another
// one than was read, is no copy any more, also when its disk is away later and nobody can look again.
#pragma once

#include "locations/loading/archived_files.h"
#include "records/archived/archive_records.h"
#include "records/archived/proof_facts.h"

namespace corvane {

struct SeenFiles {
    SharedEntryList entries;    // never null
    SharedArchivedFiles files;  // of these entries; never null
    GonePaths goneWithoutIndex; // of no entry
};

struct TakenBack {
    ReadingBatch lost;     // of files that are gone or have another size than their record
    ReadingPaths outdated; // nobody knows what these files hold now
};

// What has to replace, or to leave, the readings that are kept. Pure, linear in the entries.
TakenBack readingsTakenBackBy(const SeenFiles& seen, const ProofFacts& kept);

} // namespace corvane
