#include "model/loaded_archives.h"

#include <algorithm>
#include <cerrno>

#include <fmt/format.h>

#include "model/cloud_providers.h"
#include "model/destination_detection.h"
#include "platform/directory.h"
#include "platform/durable_file.h"
#include "platform/paths.h"
#include "records/archive_index_file.h"
#include "records/console_log.h"
#include "records/stable_hash.h"
#include "records/stable_id.h"

namespace corvane {

namespace {

constexpr std::string_view volumesFolder = "/Volumes/";

std::string indexPathOf(const std::string& rootPath) {
    return platform::joinPath(rootPath, archiveIndexFileName);
}

// The system said that there is no such file, which is another thing than not being able to look.
bool isCertainlyAbsent(const std::string& path) {
    struct stat info{};
    return platform::posixFileLayer().stat(path, info) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

bool hasFileOrPlaceholder(const std::string& rootPath, std::string_view relativePath) {
    if (!platform::isSafeRelativePath(relativePath)) return false;
    const std::string path = platform::joinPath(rootPath, relativePath);
    if (platform::fileExists(path)) return true;
    return platform::fileExists(platform::joinPath(
        platform::parentPath(path), fmt::format(".{}.icloud", platform::lastPathComponent(path))));
}

std::vector<std::string> spots(const platform::Platform& platform) {
    std::vector<std::string> found = {
        platform::joinPath(platform.realUserHomeDirectory(), "Library/Mobile Documents/com~apple~CloudDocs")};
    for (const CloudStorageProvider& provider : detectCloudStorage(platform)) found.push_back(provider.path);
    for (const CloudStorageProvider& volume : detectRemovableVolumes(platform)) found.push_back(volume.path);
    return found;
}

void addRootsAt(const std::string& spot, std::vector<std::string>& roots) {
    if (platform::fileExists(indexPathOf(spot))) roots.push_back(spot);
    const auto children = platform::listDirectory(spot, platform::HiddenEntries::skip);
    if (!children) return;
    for (const platform::DirectoryEntry& child : *children) {
        const std::string path = platform::joinPath(spot, child.name);
        if (child.kind == platform::EntryKind::directory && platform::fileExists(indexPathOf(path))) {
            roots.push_back(path);
        }
    }
}

std::optional<std::string> volumeName(const platform::Platform& platform, const std::string& path) {
    const auto mountPoint = platform.removableMountPoint(path);
    if (!mountPoint) return std::nullopt;
    return std::string(platform::lastPathComponent(*mountPoint));
}

} // namespace

std::string indexCachePath(const CorvaneAppSupport& support, const std::string& rootPath) {
    return platform::joinPath(support.filePath("index-cache"), stableHash(rootPath) + ".json");
}

std::vector<std::string> discoverArchiveRoots(const platform::Platform& platform) {
    std::vector<std::string> roots;
    std::set<std::string> seen;
    for (const std::string& spot : spots(platform)) {
        if (!seen.insert(canonicalPath(spot)).second) continue;
        consoleLine("[HangTrace] discover spot " + spot);
        addRootsAt(spot, roots);
    }
    return roots;
}

bool isLocationConnected(const platform::Platform& platform, const std::string& rootPath) {
    const auto mountPoint = platform.removableMountPoint(rootPath);
    if (!mountPoint) return platform::fileExists(rootPath);
    if (rootPath.starts_with(volumesFolder)) return platform::fileExists(*mountPoint);
    // Elsewhere the folder of a mount point may stand empty while nothing is mounted.
    const auto volumes = platform.mountedVolumes();
    const bool isMounted = volumes && std::any_of(volumes->begin(), volumes->end(), [&](const auto& volume) {
                               return volume.path == *mountPoint;
                           });
    return isMounted || platform::fileExists(rootPath);
}

std::shared_ptr<const EmailArchiveIndex> loadIndexWithCache(const platform::Platform& platform,
                                                            const CorvaneAppSupport& support,
                                                            const std::string& rootPath, bool connected) {
    const std::string cachePath = indexCachePath(support, rootPath);
    const std::string path = connected ? indexPathOf(rootPath) : cachePath;
    if (connected && isCertainlyAbsent(path)) {
        // The disk is there and the archive is gone from it.
        if (platform.removableMountPoint(rootPath)) support.files().unlink(cachePath);
        return nullptr;
    }
    auto index = readArchiveIndex(path);
    if (!index) return nullptr;
    if (connected) {
        platform::createDirectories(support.files(), support.filePath("index-cache"));
        platform::writeFileAtomically(support.files(), cachePath, encodeArchiveIndex(*index));
    }
    return std::make_shared<const EmailArchiveIndex>(std::move(*index));
}

bool allArchivedEmlGone(const std::vector<ArchivedEmailRecord>& records, const std::string& rootPath) {
    return !records.empty() &&
           std::none_of(records.begin(), records.end(), [&](const ArchivedEmailRecord& record) {
               return hasFileOrPlaceholder(rootPath, record.emlRelativePath);
           });
}

std::vector<LoadedArchive> dedupeLoadedArchives(std::vector<LoadedArchive> archives) {
    std::vector<bool> stays(archives.size(), true);
    std::unordered_map<std::int64_t, std::size_t> holders;
    for (std::size_t position = 0; position < archives.size(); ++position) {
        const std::int64_t created = archives[position].index->createdAt.time_since_epoch().count();
        const auto [holder, isNew] = holders.try_emplace(created, position);
        if (isNew) continue;
        if (!archives[position].connected || archives[holder->second].connected) {
            stays[position] = false;
        } else {
            stays[holder->second] = false;
            holder->second = position;
        }
    }
    std::vector<LoadedArchive> kept;
    for (std::size_t position = 0; position < archives.size(); ++position) {
        if (stays[position]) kept.push_back(std::move(archives[position]));
    }
    return kept;
}

std::string locationDisplayName(const platform::Platform& platform, const std::string& rootPath) {
    if (const auto volume = volumeName(platform, rootPath)) return "U 盘 · " + *volume;
    const std::string last(platform::lastPathComponent(rootPath));
    const auto provider = cloudProviderName(rootPath);
    if (!provider) return last;
    return last.empty() ? *provider : fmt::format("{} · {}", *provider, last);
}

ArchiveLocation::Kind locationKind(const platform::Platform& platform, const std::string& rootPath,
                                   bool connected) {
    using enum ArchiveLocation::Kind;
    if (rootPath.find("Mobile Documents") != std::string::npos ||
        rootPath.find("Library/CloudStorage") != std::string::npos) {
        return cloud;
    }
    if (!connected) return platform.removableMountPoint(rootPath) ? removable : local;
    const auto volume = platform.volumeOf(rootPath);
    if (!volume) return local;
    if (volume->removable.value_or(false) || volume->ejectable.value_or(false)) return removable;
    return volume->internal.value_or(true) ? local : removable;
}

LibraryContent makeLibraryContent(std::vector<ArchivedEntry> entries,
                                  std::vector<ArchiveLocation> locations) {
    LibraryContent content;
    auto shared = std::make_shared<std::vector<ArchivedEntry>>();
    auto baseIDs = std::make_shared<SharedTextSet>();
    std::set<std::pair<std::string_view, std::string_view>> seen;
    shared->reserve(entries.size());
    for (ArchivedEntry& entry : entries) {
        shared->push_back(std::move(entry));
        const ArchivedEntry& kept = shared->back();
        if (!seen.emplace(kept.locationRootPath.view(), kept.record.id.view()).second) {
            shared->pop_back();
            continue;
        }
        const std::string_view base = baseID(kept.record.id);
        if (!baseIDs->contains(base)) {
            const bool isWhole = base.size() == kept.record.id.size();
            baseIDs->insert(isWhole ? kept.record.id : SharedText(base));
        }
        content.entryByBaseID.insert_or_assign(base, shared->size() - 1);
    }
    content.entries = std::move(shared);
    content.baseIDs = std::move(baseIDs);
    content.locations = std::move(locations);
    return content;
}

LibraryContent makeLibraryContent(const platform::Platform& platform,
                                  const std::vector<LoadedArchive>& archives,
                                  const std::optional<std::string>& destination) {
    std::vector<ArchivedEntry> entries;
    std::vector<ArchiveLocation> locations;
    std::shared_ptr<const EmailArchiveIndex> destinationIndex;
    for (const LoadedArchive& archive : archives) {
        const SharedText root(archive.rootPath);
        if (destination && canonicalPath(*destination) == archive.rootPath) destinationIndex = archive.index;
        for (const ArchivedEmailRecord& record : archive.index->records) entries.push_back({record, root});
        locations.push_back({archive.rootPath, locationDisplayName(platform, archive.rootPath),
                             locationKind(platform, archive.rootPath, archive.connected), archive.connected,
                             static_cast<std::int64_t>(archive.index->records.size())});
    }
    LibraryContent content = makeLibraryContent(std::move(entries), std::move(locations));
    content.destinationIndex = std::move(destinationIndex);
    return content;
}

} // namespace corvane
