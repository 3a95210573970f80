// Finding archive folders and reading their indexes: the background part of the library's loading. Touches
// disks that may sleep or hang; never the main thread. What lies in an archive was written by somebody else:
// its paths are used only where they stay inside.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/platform.h"
#include "records/app_support.h"
#include "records/archive_records.h"
#include "text/shared_text.h"

namespace corvane {

struct LoadedArchive {
    std::string rootPath;
    bool connected = false;
    std::shared_ptr<const EmailArchiveIndex> index;
};

// Everything that is published together. Made in the background.
struct LibraryContent {
    SharedEntryList entries = std::make_shared<const std::vector<ArchivedEntry>>();
    std::vector<ArchiveLocation> locations;
    std::shared_ptr<const SharedTextSet> baseIDs = std::make_shared<const SharedTextSet>();
    // Position in `entries` of the last entry of a base id.
    std::unordered_map<std::string_view, std::size_t> entryByBaseID;
    std::shared_ptr<const EmailArchiveIndex> destinationIndex; // of the current destination
};

// The cache of one archive's index in the support folder, for the time when its disk isn't connected.
std::string indexCachePath(const CorvaneAppSupport& support, const std::string& rootPath);

// Folders with an archive index in the usual places, and one level below them.
std::vector<std::string> discoverArchiveRoots(const platform::Platform& platform);

// Whether the disk of a path is there: the mount point for removable media, the path itself otherwise.
bool isLocationConnected(const platform::Platform& platform, const std::string& rootPath);

// The index of a connected archive, whose cache is renewed, or the cached one of another. Nothing when there
// is none; the cache of an archive that is gone from a connected disk is removed.
std::shared_ptr<const EmailArchiveIndex> loadIndexWithCache(const platform::Platform& platform,
                                                            const CorvaneAppSupport& support,
                                                            const std::string& rootPath, bool connected);

// No file of the records exists, nor a cloud placeholder of one. False without records.
bool allArchivedEmlGone(const std::vector<ArchivedEmailRecord>& records, const std::string& rootPath);

// Archives with one `createdAt` are one archive: the first stays, but a connected one goes before one that
// isn't.
std::vector<LoadedArchive> dedupeLoadedArchives(std::vector<LoadedArchive> archives);

std::string locationDisplayName(const platform::Platform& platform, const std::string& rootPath);
ArchiveLocation::Kind locationKind(const platform::Platform& platform, const std::string& rootPath,
                                   bool connected);

// Of repeated record ids of one archive the first stays.
LibraryContent makeLibraryContent(const platform::Platform& platform,
                                  const std::vector<LoadedArchive>& archives,
                                  const std::optional<std::string>& destination);

// The same from a snapshot's lists.
LibraryContent makeLibraryContent(std::vector<ArchivedEntry> entries, std::vector<ArchiveLocation> locations);

} // namespace corvane
