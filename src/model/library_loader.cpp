#include "model/library_loader.h"

#include <algorithm>

#include <fmt/format.h>

#include "model/cloud_providers.h"
#include "model/settings_keys.h"

namespace corvane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds recentLoad{2};

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void addRoot(std::vector<std::string>& roots, const std::string& path) {
    std::string root = canonicalPath(path);
    if (std::find(roots.begin(), roots.end(), root) == roots.end()) roots.push_back(std::move(root));
}

std::vector<SharedText> asList(const SharedTextSet& ids) {
    return {ids.begin(), ids.end()};
}

} // namespace

struct LibraryLoader::LoadJob {
    const platform::Platform& platform;
    CorvaneAppSupport support;
    const ArchiveLibraryStartupLog& log;
    std::optional<std::string> destination;
    std::vector<std::string> roots;
    std::set<std::string> forgottenRoots; // canonical
    Clock::time_point start = Clock::now();
};

struct LibraryLoader::LoadResult {
    std::vector<std::string> roots;       // that stay known
    std::vector<std::string> broughtBack; // forgotten ones that have returned with their files
    std::vector<std::string> removed;
    LibraryContent content;
};

LibraryLoader::LibraryLoader(ModelContext& context, QObject* parent)
  : QObject(parent)
  , context_(context)
  , snapshots_(context.support)
  , loadTask_(context.tasks)
  , connectionTask_(context.tasks) {}

const ArchivedEntry* LibraryLoader::archivedEntryByBaseID(std::string_view baseID) const {
    const auto entry = content_.entryByBaseID.find(baseID);
    return entry == content_.entryByBaseID.end() ? nullptr : &(*content_.entries)[entry->second];
}

const ArchiveLocation* LibraryLoader::location(const std::string& rootPath) const {
    const auto found =
        std::find_if(content_.locations.begin(), content_.locations.end(),
                     [&](const ArchiveLocation& candidate) { return candidate.rootPath == rootPath; });
    return found == content_.locations.end() ? nullptr : &*found;
}

std::vector<std::string> LibraryLoader::candidateRoots(const std::optional<std::string>& destination) const {
    std::vector<std::string> roots;
    if (destination) addRoot(roots, *destination);
    for (const std::string& root :
         context_.settings.textList(knownLocationsKey).value_or(std::vector<std::string>())) {
        addRoot(roots, root);
    }
    return roots;
}

void LibraryLoader::loadEmailArchiveIndex(const std::optional<std::string>& destination, bool force) {
    std::vector<std::string> roots = candidateRoots(destination);
    const std::string signature = fmt::format("{}", fmt::join(roots, "\x1F"));
    if (!force && loadTask_.isRunning() && signature == loadSignature_) {
        context_.startupLog.mark("live index load skipped reason=alreadyLoading");
        return;
    }
    if (!force && signature == lastLoadSignature_ && lastLoadFinishedAt_ &&
        Clock::now() - *lastLoadFinishedAt_ < recentLoad) {
        context_.startupLog.mark("live index load skipped reason=recentlyLoaded");
        return;
    }
    loadSignature_ = signature;
    context_.startupLog.mark("live index load start");
    const auto forgotten =
        context_.settings.textList(forgottenLocationsKey).value_or(std::vector<std::string>());
    LoadJob job{context_.platform, context_.support, context_.startupLog,
                destination,       std::move(roots), {forgotten.begin(), forgotten.end()}};
    loadTask_.start(TaskPriority::userInitiated,
                    [this, job = std::move(job), signature, snapshots = snapshots_](const TaskHandle& task) {
                        auto loaded = load(job, task.stopToken());
                        if (!loaded) return;
                        auto result = std::make_shared<LoadResult>(std::move(*loaded));
                        const LibraryContent& content = result->content;
                        const SharedEntryList entries = content.entries;
                        const auto locations = content.locations;
                        const auto baseIDs = content.baseIDs;
                        task.onMain([this, result, signature, start = job.start] {
                            applyLoadedArchiveIndex(*result, signature, start);
                        });
                        if (!task.isCancelled()) snapshots.save(*entries, locations, asList(*baseIDs));
                    });
}

std::optional<LibraryLoader::LoadResult> LibraryLoader::load(const LoadJob& job,
                                                             const std::stop_token& stop) {
    LoadResult result;
    result.roots = job.roots;
    const auto discovered = discoverArchiveRoots(job.platform);
    job.log.mark(fmt::format("liveIndex discoverArchiveRoots count={} elapsed={:.3f}s", discovered.size(),
                             secondsSince(job.start)));
    for (const std::string& root : discovered) addRoot(result.roots, root);
    std::vector<LoadedArchive> archives;
    for (const std::string& root : result.roots) {
        if (stop.stop_requested()) return std::nullopt;
        if (auto archive = loadRoot(job, root, result)) archives.push_back(std::move(*archive));
    }
    if (stop.stop_requested()) return std::nullopt;
    std::erase_if(result.roots, [&](const std::string& root) {
        return std::find(result.removed.begin(), result.removed.end(), root) != result.removed.end();
    });
    result.content =
        makeLibraryContent(job.platform, dedupeLoadedArchives(std::move(archives)), job.destination);
    return result;
}

std::optional<LoadedArchive> LibraryLoader::loadRoot(const LoadJob& job, const std::string& root,
                                                     LoadResult& result) {
    const auto start = Clock::now();
    const bool isConnected = isLocationConnected(job.platform, root);
    auto index = loadIndexWithCache(job.platform, job.support, root, isConnected);
    if (!index || index->records.empty()) {
        job.log.mark(
            fmt::format("liveIndex root skipped connected={} hasIndex={}", isConnected, index != nullptr));
        return std::nullopt;
    }
    const bool isGone = isConnected && allArchivedEmlGone(index->records, root);
    const bool hasContent = isConnected && !isGone;
    if (job.forgottenRoots.contains(root)) {
        if (!hasContent) {
            job.support.files().unlink(indexCachePath(job.support, root));
            result.removed.push_back(root);
            job.log.mark("liveIndex root skipped reason=forgotten path=" + root);
            return std::nullopt;
        }
        // The user has brought it back.
        result.broughtBack.push_back(root);
    }
    job.log.mark(fmt::format("liveIndex root done records={} connected={} contentGone={} elapsed={:.3f}s",
                             index->records.size(), isConnected, isGone, secondsSince(start)));
    return LoadedArchive{root, hasContent, std::move(index)};
}

void LibraryLoader::applyLoadedArchiveIndex(LoadResult& result, const std::string& signature,
                                            Clock::time_point start) {
    context_.settings.setTextList(knownLocationsKey, result.roots);
    unforget(result.broughtBack);
    publish(std::move(result.content));
    lastLoadSignature_ = signature;
    lastLoadFinishedAt_ = Clock::now();
    loadSignature_.clear();
    context_.startupLog.mark(fmt::format("live index load finish entries={} locations={} unindexed=deferred",
                                         content_.entries->size(), content_.locations.size()));
    context_.performanceLog.mark(fmt::format("[Perf] loadEmailArchiveIndex {:.3f}s", secondsSince(start)));
    Q_EMIT loadFinished();
}

void LibraryLoader::unforget(const std::vector<std::string>& roots) {
    if (roots.empty()) return;
    auto forgotten = context_.settings.textList(forgottenLocationsKey).value_or(std::vector<std::string>());
    std::erase_if(forgotten, [&](const std::string& root) {
        return std::find(roots.begin(), roots.end(), root) != roots.end();
    });
    context_.settings.setTextList(forgottenLocationsKey, forgotten);
}

void LibraryLoader::publish(LibraryContent content) {
    const bool sameBaseIDs = *content.baseIDs == *content_.baseIDs;
    content_ = std::move(content);
    Q_EMIT archivedEntriesChanged();
    Q_EMIT archiveLocationsChanged();
    // Equal sets have equal consequences, and those cost a pass over all messages.
    if (sameBaseIDs) return;
    ++baseIDsToken_;
    Q_EMIT archivedBaseIDsChanged();
}

void LibraryLoader::loadCachedArchiveLibraryIfNeeded() {
    if (!content_.entries->empty()) {
        context_.startupLog.mark(
            fmt::format("cache skipped archivedEntriesAlreadyLoaded={}", content_.entries->size()));
        return;
    }
    const auto start = Clock::now();
    std::optional<ArchiveLibrarySnapshot> snapshot;
    try {
        snapshot = snapshots_.load();
    } catch (const std::exception& error) {
        context_.startupLog.mark(fmt::format("cache load failed error={}", error.what()));
        return;
    }
    if (!snapshot || snapshot->entries.empty()) {
        context_.startupLog.mark(fmt::format("cache {} path={}", snapshot ? "empty" : "miss",
                                             snapshots_.snapshotPathForDiagnostics()));
        return;
    }
    publish(makeLibraryContent(std::move(snapshot->entries), std::move(snapshot->locations)));
    context_.startupLog.mark(fmt::format("cache applied entries={}", content_.entries->size()));
    context_.performanceLog.mark(fmt::format("[Perf] loadCachedArchiveLibrary {:.3f}s", secondsSince(start)));
}

void LibraryLoader::refreshArchiveLocationConnectionStates() {
    const auto job = [this, locations = content_.locations, entries = content_.entries,
                      baseIDs = content_.baseIDs, snapshots = snapshots_,
                      &platform = context_.platform](const TaskHandle& task) {
        auto tested = locations;
        for (ArchiveLocation& location : tested) {
            location.isConnected = isLocationConnected(platform, location.rootPath);
        }
        if (tested == locations || task.isCancelled()) return;
        task.onMain([this, tested] {
            content_.locations = tested;
            Q_EMIT archiveLocationsChanged();
            context_.startupLog.mark(
                fmt::format("archive location connection states refreshed locations={}", tested.size()));
        });
        snapshots.save(*entries, tested, asList(*baseIDs));
    };
    connectionTask_.start(TaskPriority::utility, job);
}

} // namespace corvane
