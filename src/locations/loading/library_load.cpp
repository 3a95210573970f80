#include "locations/loading/library_load.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include <fmt/format.h>
#include <sys/stat.h>

#include "locations/archive_locations.h"
#include "locations/loading/archive_discovery.h"
#include "locations/loading/archive_looks.h"
#include "locations/loading/archived_files.h"
#include "locations/loading/same_archives.h"
#include "locations/place_names.h"
#include "platform/paths.h"
#include "platform/stop_watch.h"
#include "records/archive_files/archive_index_file.h"
#include "search/mail_search_index.h"

namespace corvane {

namespace {

std::vector<SharedText> pathsOf(const EmailArchiveIndex& index) {
    std::vector<SharedText> paths;
    paths.reserve(index.records.size());
    for (const ArchivedEmailRecord& record : index.records) paths.push_back(record.emlRelativePath);
    return paths;
}

// The files that aren't there of an archive that is there without the index that was copied.
std::vector<SharedText> goneOfCopy(PlaceLook& look, const ArchiveIndexCache& cache, const std::string& root) {
    const auto copy = cache.loadIndexWithCache(root, root, false, [&look] { look.beginStep(); });
    if (!copy) return {};
    std::vector<SharedText> paths = pathsOf(*copy);
    const auto files = archivedFilesAt(look, cache, root, paths, true);
    if (!files || look.isGivenUp()) return {};
    std::erase_if(
        paths, [&](const SharedText& path) { return files->presence(path) != ArchivedFilePresence::gone; });
    return paths;
}

} // namespace

// What is found at one root while its place answers.
struct LibraryLoad::RootLook {
    bool connected = false;
    std::optional<EmailArchiveIndex> index;
    bool isIndexUnreadable = false;         // it may be there
    std::optional<SourceStamp> stamp;       // of the index while it was read
    std::shared_ptr<const RootFiles> files; // null when they couldn't be looked at
    std::vector<SharedText> gone;           // of the copy of an index that isn't there any more
    ArchiveLocation::Kind kind = ArchiveLocation::Kind::local;
    double seconds = 0;

    [[nodiscard]] bool hasRecords() const { return index && !index->records.empty(); }

    [[nodiscard]] bool isContentGone() const {
        return connected && files && allArchivedEmlGone(*files, *index);
    }
};

std::optional<LibraryLoadResult> LibraryLoad::run(const std::stop_token& stop) {
    PlaceLooks looks(platform_, files_, stop, input_.placeLimit);
    addDiscoveredRoots(looks);
    findAway(looks);
    findKnown();
    const std::vector<std::string>& roots = input_.candidates.roots();
    auto found = looks.askAll<RootLook>(
        roots, [&platform = platform_, known = known_](PlaceLook& look, const std::string& root) {
            const auto ofRoot = known.find(root);
            return lookAtRoot(look, platform, root, ofRoot == known.end() ? KnownIndex() : ofRoot->second);
        });
    for (std::size_t i = 0; i < roots.size(); ++i) {
        if (stop.stop_requested()) return std::nullopt;
        addRoot(roots[i], std::move(found[i]));
    }
    for (const std::string& root : roots) {
        if (!result_.removed.contains(root)) result_.roots.push_back(root);
    }
    fill(dedupeLoadedArchives(std::move(archives_)));
    return std::move(result_);
}

void LibraryLoad::addDiscoveredRoots(PlaceLooks& looks) {
    const platform::StopWatch watch;
    const std::vector<std::string> found = discoverArchiveRoots(platform_, looks);
    for (const std::string& root : found) input_.candidates.add(root);
    log_.mark(fmt::format("liveIndex discoverArchiveRoots count={} elapsed={:.3f}s", found.size(),
                          watch.seconds()));
}

void LibraryLoad::findAway(PlaceLooks& looks) {
    result_.away = rootsWithoutIndex(looks, input_.forgottenPresent);
}

// Some that an index has may not be in the library, where they are those of another archive.
void LibraryLoad::findKnown() {
    if (!input_.publishedLibrary) return;
    const SharedEntryList& entries = input_.publishedLibrary->entries;
    for (const auto& [root, ofRoot] : entriesByRoot(*entries)) {
        KnownIndex& index = known_[std::string(root)];
        index.records = {entries, static_cast<std::size_t>(ofRoot.data() - entries->data()), ofRoot.size()};
        const auto state = input_.publishedIndexes.find(root);
        if (state == input_.publishedIndexes.end() || state->second.count != ofRoot.size()) continue;
        index.stamp = state->second.stamp;
        index.createdAt = state->second.createdAt;
        index.updatedAt = state->second.updatedAt;
    }
}

LibraryLoad::RootLook LibraryLoad::lookAtRoot(PlaceLook& look, const platform::Platform& platform,
                                              const std::string& root, const KnownIndex& known) {
    const platform::StopWatch watch;
    const ArchiveIndexCache cache(platform, CorvaneAppSupport(platform, look.files()));
    struct stat status{};
    const bool isThere = look.files().stat(root, status) == 0;
    RootLook found;
    if (look.isGivenUp()) return found;
    found.connected = isLocationConnected(platform, root);
    const auto before = archiveIndexStamp(look.files(), root);
    found.index = cache.loadIndexWithCache(root, root, found.connected, [&look] { look.beginStep(); }, known);
    if (found.connected && before && before == archiveIndexStamp(look.files(), root)) found.stamp = before;
    if (found.connected && !found.index) {
        const std::string path = platform::joinPath(root, archiveIndexFileName);
        found.isIndexUnreadable = filePresence(look.files(), path) != FilePresence::absent;
        found.gone = goneOfCopy(look, cache, root);
    }
    if (look.isGivenUp() || !found.hasRecords()) return found;
    if (found.connected && isThere) cache.rememberDevice(root, static_cast<std::uint64_t>(status.st_dev));
    found.files = archivedFilesAt(look, cache, root, pathsOf(*found.index), found.connected);
    if (look.isGivenUp()) return found;
    found.kind = locationKind(platform, root, found.connected && !found.isContentGone());
    found.seconds = watch.seconds();
    return found;
}

void LibraryLoad::addRoot(const std::string& root, std::optional<RootLook> look) {
    if (!look) {
        look.emplace().index = cache_.loadIndexWithCache(root, root, false, {}, known_[root]);
        look->isIndexUnreadable = !look->index;
        look->kind = locationKind(platform_, root, false);
        log_.mark(fmt::format("liveIndex root not answering path={}", root));
    }
    if (!look->gone.empty()) result_.goneWithoutIndex[root] = std::move(look->gone);
    if (look->isIndexUnreadable && !input_.forgotten.contains(root)) result_.unreadableRoots.push_back(root);
    if (!look->hasRecords()) {
        log_.mark(fmt::format("liveIndex root skipped connected={} hasIndex={} path={}", look->connected,
                              look->index.has_value(), root));
        return;
    }
    const bool contentGone = look->isContentGone();
    const bool hasContent = look->connected && !contentGone;
    if (input_.forgotten.contains(root) && !hasReturned(root, hasContent)) return;
    log_.mark(fmt::format("liveIndex root done records={} connected={} contentGone={} elapsed={:.3f}s",
                          look->index->records.size(), look->connected, contentGone, look->seconds));
    if (look->stamp) {
        result_.indexes[root] = {*look->stamp, look->index->createdAt, look->index->updatedAt,
                                 look->index->records.size()};
    }
    // The databases are local, so this goes for a disk that isn't there, too.
    archives_.push_back({root, hasContent, std::move(*look->index), MailSearchIndex::open(support_, root),
                         std::move(look->files), look->kind});
}

bool LibraryLoad::hasReturned(const std::string& root, bool hasContent) {
    if (hasContent && !input_.forgottenPresent.contains(root)) {
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
    ArchivedFiles files;
    for (LoadedArchive& archive : archives) {
        if (archive.files) files.byRoot.emplace(archive.rootPath, std::move(archive.files));
        if (archive.searchIndex) searchIndexes->emplace(archive.rootPath, std::move(archive.searchIndex));
        if (archive.rootPath == input_.currentDestination) {
            result_.destination = {archive.rootPath, archive.index.createdAt, archive.index.updatedAt};
        }
        ArchiveLocation location;
        location.rootPath = archive.rootPath;
        location.displayName = locationDisplayName(platform_, archive.rootPath);
        location.kind = archive.kind;
        location.isConnected = archive.connected;
        result_.locations.push_back(std::move(location));
        const SharedText root(archive.rootPath);
        for (ArchivedEmailRecord& record : archive.index.records)
            entries.push_back({std::move(record), root});
        archive.index.records = {};
    }
    result_.library = ArchivedLibrary::make(std::move(entries), input_.publishedLibrary);
    result_.searchIndexes = std::move(searchIndexes);
    result_.files = publishedFiles(std::move(files), input_.publishedFiles);
    countEntries(result_.locations, *result_.library);
}

} // namespace corvane
