#include "model/library/library_loader.h"

#include <algorithm>
#include <exception>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <sys/stat.h>

#include "locations/archive_locations.h"
#include "locations/loading/archive_index_cache.h"
#include "locations/places/cloud_providers.h"
#include "platform/paths.h"
#include "platform/stop_watch.h"
#include "search/mail_search_index.h"

namespace corvane {

namespace {

using namespace std::chrono_literals;

constexpr auto recently = 2.0s;

struct LookJob {
    const platform::Platform& platform;
    CorvaneAppSupport support;
    ArchiveLooksInput input;
};

struct ForgetJob {
    ArchiveIndexCache cache;
    std::string root;
};

} // namespace

LibraryLoader::LibraryLoader(ModelContext& context, QObject* parent, Clock clock)
  : QObject(parent)
  , context_(context)
  , clock_(std::move(clock))
  , snapshotWriter_(context)
  , archiveIndexLoadTask_(context.tasks)
  , lookTask_(context.tasks)
  , pruneTask_(context.tasks)
  , forgetTask_(context.tasks) {}

std::optional<EmailArchiveIndex> LibraryLoader::emailArchiveIndex() const {
    if (!destination_) return std::nullopt;
    EmailArchiveIndex index{destination_->createdAt, destination_->updatedAt, {}};
    for (const ArchivedEntry& entry : *library_->entries) {
        if (entry.locationRootPath == destination_->rootPath) index.records.push_back(entry.record);
    }
    return index;
}

const ArchiveLocation* LibraryLoader::location(std::string_view rootPath) const {
    const auto found = std::ranges::find(locations_, rootPath, &ArchiveLocation::rootPath);
    return found == locations_.end() ? nullptr : &*found;
}

void LibraryLoader::loadEmailArchiveIndex(const std::optional<std::string>& currentDestination, bool force) {
    LibraryLoadInput input;
    if (currentDestination) {
        input.currentDestination = platform::canonicalPath(*currentDestination);
        input.candidates.add(*currentDestination);
    }
    for (const std::string& root : knownLocations(context_.settings)) input.candidates.add(root);
    if (!force && isLoadNeedless(input.candidates.roots())) return;
    input.forgotten = forgottenLocations(context_.settings);
    input.forgottenPresent = forgottenPresentLocations(context_.settings);
    input.publishedLibrary = library_;
    input.publishedIndexes = indexes_;
    input.publishedFiles = files_;
    startLoad(std::move(input));
}

bool LibraryLoader::isLoadNeedless(const std::vector<std::string>& roots) const {
    if (isLoading() && roots == loadingRoots_) {
        context_.startupLog.mark("live index load skipped reason=alreadyLoading");
        return true;
    }
    if (lastArchiveIndexLoadFinishedAt_ && roots == lastLoadedRoots_ &&
        clock_() - *lastArchiveIndexLoadFinishedAt_ < recently) {
        context_.startupLog.mark("live index load skipped reason=recentlyLoaded");
        return true;
    }
    return false;
}

void LibraryLoader::startLoad(LibraryLoadInput input) {
    pruneTask_.cancel(); // it knows nothing of what this load may bring
    loadingRoots_ = input.candidates.roots();
    context_.startupLog.mark("live index load start");
    const platform::StopWatch watch;
    archiveIndexLoadTask_.start(
        TaskPriority::userInitiated,
        LibraryLoad(context_.platform, context_.support, context_.startupLog, std::move(input)),
        [](LibraryLoad load, const TaskHandle& task) { return load.run(task.stopToken()); },
        [this, watch](LibraryLoadResult result) {
            applyLoadedArchiveIndex(std::move(result), watch.seconds());
        });
    Q_EMIT loadStarted();
}

void LibraryLoader::applyLoadedArchiveIndex(LibraryLoadResult result, double seconds) {
    lastLoadedRoots_ = loadingRoots_;
    lastArchiveIndexLoadFinishedAt_ = clock_();
    adoptLocations(result);
    destination_ = result.destination;
    indexes_ = std::move(result.indexes);
    goneWithoutIndex_ = std::move(result.goneWithoutIndex);
    unreadableRoots_ = std::move(result.unreadableRoots);
    snapshotWriter_.save({result.library, result.locations});
    publish(std::move(result.library), std::move(result.locations), std::move(result.searchIndexes),
            std::move(result.files));
    pruneSearchIndexes();
    context_.startupLog.mark(fmt::format("live index load finish entries={} locations={} unindexed=deferred",
                                         library_->entries->size(), locations_.size()));
    context_.performanceLog.mark(fmt::format("[Perf] loadEmailArchiveIndex {:.3f}s", seconds));
    if (std::exchange(looksAfterLoad_, false)) refreshArchiveLocationConnectionStates();
    Q_EMIT loadFinished();
}

void LibraryLoader::adoptLocations(const LibraryLoadResult& result) {
    for (const std::string& root : result.broughtBack) unforgetLocation(context_.settings, root);
    for (const std::string& root : result.away) markForgottenLocationAway(context_.settings, root);
    RootList known;
    for (const std::string& root : result.roots) known.add(root);
    // What was remembered while the load ran stays known.
    for (const std::string& root : knownLocations(context_.settings)) {
        if (!result.removed.contains(root)) known.add(root);
    }
    setKnownLocations(context_.settings, known.roots());
}

// The index of every root that is known stays, also of one that can't be read at the moment: making it again
// takes hours.
void LibraryLoader::pruneSearchIndexes() {
    struct PruneJob {
        CorvaneAppSupport support;
        std::vector<std::string> roots;
    };

    pruneTask_.start(TaskPriority::utility, PruneJob{context_.support, knownLocations(context_.settings)},
                     [](const PruneJob& job, const TaskHandle& task) {
                         if (!task.isCancelled()) MailSearchIndex::pruneOrphans(job.support, job.roots);
                     });
}

void LibraryLoader::publish(SharedLibrary library, std::vector<ArchiveLocation> locations,
                            SharedSearchIndexes searchIndexes, SharedArchivedFiles files) {
    library_.swap(library);
    searchIndexes_.swap(searchIndexes);
    files_.swap(files);
    locations_ = std::move(locations);
    // Equal sets have equal consequences, and those cost a pass over all messages.
    const bool sameBaseIDs = library_->baseIDs == library->baseIDs;
    const bool sameFiles = files_ == files;
    context_.tasks.discard(std::move(library));
    context_.tasks.discard(std::move(searchIndexes));
    context_.tasks.discard(std::move(files));
    Q_EMIT archivedEntriesChanged();
    Q_EMIT archiveLocationsChanged();
    if (!sameBaseIDs) Q_EMIT archivedBaseIDsChanged();
    if (!sameFiles) Q_EMIT archivedFilesChanged();
}

void LibraryLoader::loadCachedArchiveLibraryIfNeeded() {
    const ArchiveLibraryStartupLog& log = context_.startupLog;
    // After a live load even an empty library is newer than the snapshot.
    if (!library_->entries->empty() || lastArchiveIndexLoadFinishedAt_) {
        log.mark(fmt::format("cache skipped archivedEntriesAlreadyLoaded={}", library_->entries->size()));
        return;
    }
    const platform::StopWatch watch;
    std::optional<ArchiveLibrarySnapshot> snapshot;
    SharedLibrary library;
    // A thread has a heap of its own: in the main thread's, which would wait for it, what was read here goes
    // slowly as soon as a live load has taken its place.
    std::thread([&] {
        snapshot = readSnapshot();
        if (!snapshot) return;
        library = ArchivedLibrary::make(std::move(snapshot->entries));
        countEntries(snapshot->locations, *library);
    }).join();
    if (!snapshot) return;
    // Search, and what is said of files, wait for the live load.
    publish(std::move(library), std::move(snapshot->locations), std::make_shared<const SearchIndexTable>(),
            files_);
    log.mark(
        fmt::format("cache applied entries={} locations={}", library_->entries->size(), locations_.size()));
    context_.performanceLog.mark(fmt::format("[Perf] loadCachedArchiveLibrary {:.3f}s", watch.seconds()));
}

std::optional<ArchiveLibrarySnapshot> LibraryLoader::readSnapshot() const {
    const ArchiveLibraryStartupLog& log = context_.startupLog;
    const ArchiveLibrarySnapshotStore store(context_.support);
    try {
        auto snapshot = store.load();
        if (snapshot && !snapshot->entries.empty()) return snapshot;
        log.mark(
            fmt::format("cache {} path={}", snapshot ? "empty" : "miss", store.snapshotPathForDiagnostics()));
    } catch (const std::exception& error) { // a damaged snapshot counts as none
        log.mark(fmt::format("cache load failed error={}", error.what()));
    }
    return std::nullopt;
}

void LibraryLoader::dropLocation(const std::string& root) {
    const auto dropped =
        std::erase_if(locations_, [&](const ArchiveLocation& location) { return location.rootPath == root; });
    forgetTask_.start(
        TaskPriority::utility, ForgetJob{ArchiveIndexCache(context_.platform, context_.support), root},
        [](const ForgetJob& job, const TaskHandle&) { job.cache.remove(job.root); }, [] {});
    if (dropped > 0) Q_EMIT archiveLocationsChanged();
}

void LibraryLoader::refreshArchiveLocationConnectionStates() {
    // The running load may have looked before what this look is about.
    looksAfterLoad_ = isLoading();
    if (locations_.empty()) return;
    ArchiveLooksInput input{.roots = {}, .entries = library_->entries, .indexes = indexes_, .files = nullptr};
    for (const ArchiveLocation& location : locations_) input.roots.push_back(location.rootPath);
    if (lastArchiveIndexLoadFinishedAt_) input.files = files_;
    lookTask_.start(
        TaskPriority::utility, LookJob{context_.platform, context_.support, std::move(input)},
        [](const LookJob& job, const TaskHandle& task) {
            return lookAtArchives(job.platform, job.support, job.input, task.stopToken());
        },
        [this](ArchiveLooks looks) { applyLooks(std::move(looks)); });
}

void LibraryLoader::applyLooks(ArchiveLooks looks) {
    const bool areConnectionsOther = applyConnections(looks.connected);
    // A load that came in between has seen the files of its entries.
    const bool areFilesOther = looks.files && looks.entries == library_->entries && looks.files != files_;
    if (areFilesOther) {
        files_.swap(looks.files);
        context_.tasks.discard(std::move(looks.files));
        Q_EMIT archivedFilesChanged();
    }
    if (areConnectionsOther) Q_EMIT archiveLocationsChanged();
    Q_EMIT looksEnded();
    if (looks.areIndexesOther) Q_EMIT loadWanted();
}

// Whether that changes anything.
bool LibraryLoader::applyConnections(const std::map<std::string, bool>& connected) {
    bool hasChanged = false;
    for (ArchiveLocation& location : locations_) {
        const auto found = connected.find(location.rootPath);
        if (found == connected.end() || found->second == location.isConnected) continue;
        location.isConnected = found->second;
        hasChanged = true;
    }
    if (!hasChanged) return false;
    snapshotWriter_.save({library_, locations_});
    context_.startupLog.mark(
        fmt::format("archive location connection states refreshed locations={}", locations_.size()));
    return true;
}

} // namespace corvane
