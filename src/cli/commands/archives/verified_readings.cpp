#include "cli/commands/archives/verified_readings.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include <sys/stat.h>

#include "locations/places/place_looks.h"
#include "model/unkept_data.h"
#include "platform/files/file_identity.h"
#include "platform/paths.h"
#include "records/archived/proof_facts.h"
#include "records/logs/console_log.h"
#include "records/stores/app_support.h"
#include "records/stores/proof_store.h"

namespace corvane::cli {

namespace {

// Absent where there is no folder.
using Identity = std::optional<platform::FileIdentity>;

Identity folderAt(PlaceLook& look, const std::string& path) {
    struct stat status{};
    if (look.files().stat(path, status) != 0) return std::nullopt;
    return platform::FileIdentity::of(status);
}

// The roots of which readings are kept that are the same folder, as a link or a mount makes them.
std::vector<std::string> otherNamesOf(const std::string& root, const ProofFacts& facts,
                                      const platform::Platform& system, const CorvaneAppSupport& support) {
    std::vector<std::string> places{root};
    for (const auto& [known, table] : facts.archived) {
        if (known != root) places.push_back(known);
    }
    if (places.size() == 1) return {};
    PlaceLooks looks(system, support.files(), {});
    const auto folders = looks.askAll<Identity>(places, &folderAt);
    std::vector<std::string> names;
    if (!folders.front().value_or(std::nullopt)) return names;
    for (std::size_t i = 1; i < places.size(); ++i) {
        if (folders[i] == folders.front()) names.push_back(std::move(places[i]));
    }
    return names;
}

} // namespace

void keepReadings(const platform::Platform& system, const std::string& root,
                  std::vector<ArchivedFileReading> readings) {
    if (readings.empty()) return;
    const CorvaneAppSupport support(system);
    ProofStore store(support);
    ReadingBatch batch;
    const std::string known = platform::canonicalPath(root);
    for (std::string& name : otherNamesOf(known, *store.load(), system, support))
        batch.archived[std::move(name)] = readings;
    batch.archived[known] = std::move(readings);
    store.save(batch);
    const std::string failure = unkeptResultsText(support);
    if (!failure.empty()) messageLine(failure);
}

} // namespace corvane::cli
