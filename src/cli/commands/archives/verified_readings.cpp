#include "cli/commands/archives/verified_readings.h"

#include <utility>

#include "locations/places/place_looks.h"
#include "model/archiving/proof/readings_by_name.h"
#include "model/unkept_data.h"
#include "platform/paths.h"
#include "records/archived/proof_facts.h"
#include "records/logs/console_log.h"
#include "records/stores/app_support.h"
#include "records/stores/proof_store.h"

namespace corvane::cli {

void keepReadings(const platform::Platform& system, const std::string& root,
                  std::vector<ArchivedFileReading> readings) {
    if (readings.empty()) return;
    const CorvaneAppSupport support(system);
    ProofStore store(support);
    PlaceLooks looks(system, support.files(), {});
    ReadingBatch batch;
    batch.archived[platform::canonicalPath(root)] = std::move(readings);
    store.save(underEveryName(batch, *store.load(), looks));
    const std::string failure = unkeptResultsText(support);
    if (!failure.empty()) messageLine(failure);
}

} // namespace corvane::cli
