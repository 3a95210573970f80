// The background part of one live load of the library: finds the archives, reads their indexes and makes one
// library of them. Touches no published state. A place that doesn't answer costs its limit once, and its
// archive is then shown as one that isn't connected.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include "locations/known_locations.h"
#include "locations/loading/archive_index_cache.h"
#include "locations/loading/archived_files.h"
#include "locations/loading/loaded_archives.h"
#include "locations/places/place_looks.h"
#include "platform/platform.h"
#include "platform/threads/time_limited_worker.h"
#include "records/logs/startup_log.h"
#include "records/stores/app_support.h"

namespace corvane {

struct LibraryLoadInput {
    RootList candidates;
    std::set<std::string> forgotten;               // canonical
    std::set<std::string> forgottenPresent;        // those that haven't been away since; canonical
    std::optional<std::string> currentDestination; // canonical
    SharedLibrary publishedLibrary;                // null for none
    IndexStates publishedIndexes;                  // of which its entries are
    SharedArchivedFiles publishedFiles;
    std::chrono::nanoseconds placeLimit = platform::placeLimit;
};

// What the entries don't tell of the current destination's index.
struct DestinationIndex {
    std::string rootPath;
    Date createdAt{};
    Date updatedAt{};
};

struct LibraryLoadResult {
    std::vector<std::string> roots;    // candidates and found ones, for the known locations
    std::set<std::string> removed;     // forgotten ones that didn't come back
    std::set<std::string> broughtBack; // forgotten ones that are there again with their files
    std::set<std::string> away;        // forgotten ones that were there until now
    SharedLibrary library;             // another one each time, also where nothing has changed
    IndexStates indexes;
    std::vector<ArchiveLocation> locations;
    std::optional<DestinationIndex> destination; // when it is among the locations
    SharedSearchIndexes searchIndexes;
    SharedArchivedFiles files;                // the published ones where nothing has changed
    GonePaths goneWithoutIndex;               // of archives that are there and whose index isn't
    std::vector<std::string> unreadableRoots; // of archives whose index is there and couldn't be read
};

class LibraryLoad {
  public:
    // The platform and the log must outlive the load.
    LibraryLoad(const platform::Platform& platform, const CorvaneAppSupport& support,
                const ArchiveLibraryStartupLog& log, LibraryLoadInput input)
      : platform_(platform)
      , support_(support)
      , files_(support.files())
      , log_(log)
      , cache_(platform, support)
      , input_(std::move(input)) {}

    // Absent after a stop.
    std::optional<LibraryLoadResult> run(const std::stop_token& stop);

  private:
    struct RootLook;
    using KnownIndexes = std::map<std::string, KnownIndex, std::less<>>; // by root

    void addDiscoveredRoots(PlaceLooks& looks);
    [[nodiscard]] static RootLook lookAtRoot(PlaceLook& look, const platform::Platform& platform,
                                             const std::string& root, const KnownIndex& known);
    void findKnown();
    void addRoot(const std::string& root, std::optional<RootLook> look);

    void findAway(PlaceLooks& looks);

    // Whether a forgotten root counts again; notes what becomes of it.
    bool hasReturned(const std::string& root, bool hasContent);
    void fill(std::vector<LoadedArchive> archives);

    const platform::Platform& platform_;
    CorvaneAppSupport support_;
    platform::FileLayer& files_;
    const ArchiveLibraryStartupLog& log_;
    ArchiveIndexCache cache_;
    LibraryLoadInput input_;
    KnownIndexes known_;
    std::vector<LoadedArchive> archives_;
    LibraryLoadResult result_;
};

} // namespace corvane
