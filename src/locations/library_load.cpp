#include "locations/library_load.h"

#include <fmt/format.h>

#include "locations/archive_discovery.h"
#include "locations/archive_locations.h"
#include "locations/archived_files.h"
#include "platform/stop_watch.h"
#include "search/mail_search_index.h"

namespace corvane {

std::optional<LibraryLoadResult> LibraryLoad::run(const std::stop_token& stop) {
    addDiscoveredRoots(stop);
    for (const std::string& root : input_.candidates.roots()) {
        if (stop.stop_requested()) return std::nullopt;
        loadRoot(root, stop);
    }
    if (stop.stop_requested()) return std::nullopt;
    for (const std::string& root : input_.candidates.roots()) {
        if (!result_.removed.contains(root)) result_.roots.push_back(root);
    }
    fill(dedupeLoadedArchives(std::move(archives_)));
    return std::move(result_);
}

void LibraryLoad::addDiscoveredRoots(const std::stop_token& stop) {
    const platform::StopWatch watch;
    const std::vector<std::string> found = discoverArchiveRoots(platform_, stop);
    for (const std::string& root : found) input_.candidates.add(root);
    log_.mark(fmt::format("liveIndex discoverArchiveRoots count={} elapsed={:.3f}s", found.size(),
                          watch.seconds()));
}

void LibraryLoad::loadRoot(const std::string& root, const std::stop_token& stop) {
    const platform::StopWatch watch;
    const bool connected = isLocationConnected(platform_, root);
    auto index = cache_.loadIndexWithCache(root, root, connected);
    if (!index || index->records.empty()) {
        log_.mark(fmt::format("liveIndex root skipped connected={} hasIndex={} path={}", connected,
                              index.has_value(), root));
        return;
    }
    const bool contentGone = connected && allArchivedEmlGone(files_, *index, root, stop);
    const bool hasContent = connected && !contentGone;
    if (input_.forgotten.contains(root) && !comesBack(root, hasContent)) return;
    log_.mark(fmt::format("liveIndex root done records={} connected={} contentGone={} elapsed={:.3f}s",
                          index->records.size(), connected, contentGone, watch.seconds()));
    // The databases are local, so this goes for a disk that isn't there, too.
    archives_.push_back({root, hasContent, std::move(*index), MailSearchIndex::open(support_, root)});
}

bool LibraryLoad::comesBack(const std::string& root, bool hasContent) {
    if (hasContent) {
        result_.broughtBack.insert(root);
        return true;
    }
    cache_.remove(root);
    result_.removed.insert(root);
    log_.mark(fmt::format("liveIndex root skipped reason=forgotten path={}", root));
    return false;
}

void LibraryLoad::fill(std::vector<LoadedArchive> archives) {
    std::size_t total = 0;
    for (const LoadedArchive& archive : archives) total += archive.index.records.size();
    std::vector<ArchivedEntry> entries;
    entries.reserve(total);
    auto searchIndexes = std::make_shared<SearchIndexTable>();
    for (LoadedArchive& archive : archives) {
        if (archive.searchIndex) searchIndexes->emplace(archive.rootPath, std::move(archive.searchIndex));
        if (archive.rootPath == input_.currentDestination) {
            result_.destination = {archive.rootPath, archive.index.createdAt, archive.index.updatedAt};
        }
        ArchiveLocation location;
        location.rootPath = archive.rootPath;
        location.displayName = locationDisplayName(platform_, archive.rootPath);
        location.kind = locationKind(platform_, archive.rootPath, archive.connected);
        location.isConnected = archive.connected;
        result_.locations.push_back(std::move(location));
        const SharedText root(archive.rootPath);
        for (ArchivedEmailRecord& record : archive.index.records)
            entries.push_back({std::move(record), root});
        archive.index.records = {};
    }
    result_.library = ArchivedLibrary::make(std::move(entries), input_.publishedBaseIDs);
    result_.searchIndexes = std::move(searchIndexes);
    countEntries(result_.locations, *result_.library);
}

} // namespace corvane
