#include "locations/archive_discovery.h"

#include <set>

#include <fmt/format.h>

#include "locations/destination_detection.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"
#include "records/stores/archive_index_file.h"

namespace corvane {

namespace {

bool holdsArchive(const std::string& folder) {
    return platform::fileExists(platform::joinPath(folder, archiveIndexFileName));
}

std::vector<std::string> spots(const platform::Platform& platform) {
    std::vector<std::string> paths = {
        platform::joinPath(platform.realUserHomeDirectory(), "Library/Mobile Documents/com~apple~CloudDocs")};
    for (const auto& provider : detectCloudStorage(platform)) {
        paths.push_back(provider.path);
    }
    for (const auto& volume : detectRemovableVolumes(platform)) {
        paths.push_back(volume.path);
    }
    return paths;
}

void searchSpot(const std::string& spot, const std::stop_token& stop, std::vector<std::string>& roots) {
    consoleLine(fmt::format("[HangTrace] discover spot {}", spot));
    if (holdsArchive(spot)) roots.push_back(spot);
    const auto children = platform::listDirectory(spot, platform::HiddenEntries::skip);
    for (const auto& child : children.value_or(std::vector<platform::DirectoryEntry>())) {
        if (stop.stop_requested()) return;
        if (child.kind != platform::EntryKind::directory) continue;
        std::string path = platform::joinPath(spot, child.name);
        if (holdsArchive(path)) roots.push_back(std::move(path));
    }
}

} // namespace

std::vector<std::string> discoverArchiveRoots(const platform::Platform& platform,
                                              const std::stop_token& stop) {
    std::vector<std::string> roots;
    std::set<std::string> searched;
    for (const std::string& path : spots(platform)) {
        const std::string spot = platform::canonicalPath(path);
        if (stop.stop_requested()) break;
        if (searched.insert(spot).second) searchSpot(spot, stop, roots);
    }
    return roots;
}

} // namespace corvane
