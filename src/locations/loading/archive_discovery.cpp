#include "locations/loading/archive_discovery.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "locations/loading/archived_files.h"
#include "locations/places/destination_detection.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"
#include "records/logs/console_log.h"

namespace corvane {

namespace {

using Roots = std::vector<std::string>;

bool holdsArchive(PlaceLook& look, const std::string& folder) {
    look.beginStep();
    return filePresence(look.files(), platform::joinPath(folder, archiveIndexFileName)) ==
           FilePresence::present;
}

Roots spots(const platform::Platform& platform) {
    Roots paths = {iCloudFolder(platform)};
    std::ranges::copy(cloudStorageFolders(platform), std::back_inserter(paths));
    for (const auto& volume : detectRemovableVolumes(platform)) {
        std::string spot = platform::canonicalPath(volume.path);
        if (std::ranges::find(paths, spot) == paths.end()) paths.push_back(std::move(spot));
    }
    return paths;
}

Roots archivesAt(PlaceLook& look, const std::string& place) {
    consoleLine(fmt::format("[HangTrace] discover spot {}", place));
    const std::string spot = platform::canonicalPath(cloudStorageContent(place));
    Roots roots;
    if (holdsArchive(look, spot)) roots.push_back(spot);
    look.beginStep();
    const auto children = platform::listDirectory(spot, platform::HiddenEntries::skip);
    for (const auto& child : children.value_or(std::vector<platform::DirectoryEntry>())) {
        if (look.isGivenUp()) break;
        if (child.kind != platform::EntryKind::directory) continue;
        std::string path = platform::joinPath(spot, child.name);
        if (holdsArchive(look, path)) roots.push_back(std::move(path));
    }
    return roots;
}

} // namespace

std::vector<std::string> discoverArchiveRoots(const platform::Platform& platform, PlaceLooks& looks) {
    Roots roots;
    for (const auto& found : looks.askAll<Roots>(spots(platform), &archivesAt)) {
        if (found) std::ranges::copy(*found, std::back_inserter(roots));
    }
    return roots;
}

std::set<std::string> rootsWithoutIndex(PlaceLooks& looks, const std::set<std::string>& roots) {
    const std::vector<std::string> asked(roots.begin(), roots.end());
    const auto found = looks.askAll<FilePresence>(asked, [](PlaceLook& look, const std::string& root) {
        return filePresence(look.files(), platform::joinPath(root, archiveIndexFileName));
    });
    std::set<std::string> without;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        if (found[i] == FilePresence::absent) without.insert(asked[i]);
    }
    return without;
}

} // namespace corvane
