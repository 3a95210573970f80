#include "locations/loading/all_files_here.h"

#include <algorithm>

namespace corvane {

bool areAllFilesHere(const ArchivedFiles& files, const std::vector<ArchiveLocation>& locations) {
    const bool isEachLookedAt = std::ranges::all_of(
        locations, [&](const ArchiveLocation& location) { return files.byRoot.contains(location.rootPath); });
    return isEachLookedAt && !hasFilesInCloud(files);
}

} // namespace corvane
