#include "cli/commands/archives/verified_readings.h"

#include <utility>

#include "platform/paths.h"
#include "records/archived/proof_facts.h"
#include "records/stores/app_support.h"
#include "records/stores/proof_store.h"

namespace corvane::cli {

void keepReadings(const platform::Platform& system, const std::string& root,
                  std::vector<ArchivedFileReading> readings) {
    if (readings.empty()) return;
    ReadingBatch batch;
    batch.archived[platform::canonicalPath(root)] = std::move(readings);
    ProofStore(CorvaneAppSupport(system)).save(batch);
}

} // namespace corvane::cli
