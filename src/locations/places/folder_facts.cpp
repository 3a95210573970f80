#include "locations/places/folder_facts.h"

#include <filesystem>

#include "platform/files/file_look.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;
using Presence = platform::FileLook::Presence;

Presence indexIn(const std::string& folder) {
    return platform::lookAtFile(platform::joinPath(folder, archiveIndexFileName)).presence;
}

// Of the folder itself or of the nearest one above it.
std::string archiveAround(const std::string& path) {
    for (std::string folder = path;; folder = platform::parentPath(folder)) {
        if (indexIn(folder) == Presence::there) return folder;
        if (folder.size() <= 1) return {};
    }
}

std::string freeNameIn(const std::string& folder, const std::string& wanted) {
    std::string name = wanted;
    for (int number = 2; number < 1000; ++number) {
        if (platform::lookAtFile(platform::joinPath(folder, name)).presence == Presence::absent) break;
        name = wanted + " " + std::to_string(number);
    }
    return name;
}

} // namespace

FolderFacts lookIntoFolder(const std::string& path, const std::string& wantedName,
                           const std::stop_token& stop) {
    FolderFacts facts;
    fs::directory_iterator entry(path, facts.error);
    for (const fs::directory_iterator end; !facts.error && entry != end; entry.increment(facts.error)) {
        if (stop.stop_requested() || facts.items == mostItemsCounted) break;
        facts.items += entry->path().filename().native().starts_with('.') ? 0 : 1;
    }
    if (facts.error) return facts;
    facts.archiveRoot = archiveAround(path);
    facts.freeName = freeNameIn(path, wantedName);
    return facts;
}

} // namespace corvane
