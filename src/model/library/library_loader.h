// What is archived, over all archives that are known or can be found, also on disks that aren't connected.
// Main thread; disks are touched by background tasks only, but for the snapshot that is read at start.
//
// The library is in turn empty, the snapshot of the last run, the live state. All fields of one state
// change in one step, before any signal. One load runs at a time: a new one cancels the old, whose late
// result is dropped.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QObject>

#include "locations/loading/archive_looks.h"
#include "locations/loading/library_load.h"
#include "locations/loading/loaded_archives.h"
#include "model/library/library_snapshot_writer.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/stores/library_snapshot_store.h"

namespace corvane {

class LibraryLoader : public QObject {
    Q_OBJECT

  public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    explicit LibraryLoader(ModelContext& context, QObject* parent = nullptr,
                           Clock clock = &std::chrono::steady_clock::now);

    [[nodiscard]] const SharedEntryList& archivedEntries() const { return library_->entries; }

    [[nodiscard]] const std::vector<ArchiveLocation>& archiveLocations() const { return locations_; }

    // The base ids of everything archived; never null.
    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& archivedEmailBaseIDs() const {
        return library_->baseIDs;
    }

    // Of several variants or archives of one message, one. Null when it isn't archived; valid until the next
    // change.
    [[nodiscard]] const ArchivedEntry* archivedEntryByBaseID(std::string_view baseID) const {
        return library_->entryByBaseID(baseID);
    }

    // The index of the destination of the last load; absent when the library doesn't hold it. A copy.
    [[nodiscard]] std::optional<EmailArchiveIndex> emailArchiveIndex() const;

    // Of the archives of the last live load; never null, and empty before it.
    [[nodiscard]] const SharedSearchIndexes& locationSearchIndexes() const { return searchIndexes_; }

    // Which archived files are there, as the last live load or look found them; never null, and empty before
    // the first load. An archive that nobody could look at isn't in it.
    [[nodiscard]] const SharedArchivedFiles& archivedFiles() const { return files_; }

    // The files that have gone from archives that are there without their index, as the last live load found
    // them.
    [[nodiscard]] const GonePaths& goneWithoutIndex() const { return goneWithoutIndex_; }

    // Of archives that aren't in the library, since the last live load couldn't read their index.
    [[nodiscard]] const std::vector<std::string>& unreadableRoots() const { return unreadableRoots_; }

    // The first location with that root; null when there is none.
    [[nodiscard]] const ArchiveLocation* location(std::string_view rootPath) const;

    // Starts a live load. Unless forced, none is started over the same roots while one runs or shortly after
    // one.
    void loadEmailArchiveIndex(const std::optional<std::string>& currentDestination, bool force);

    [[nodiscard]] bool isLoading() const { return archiveIndexLoadTask_.isRunning(); }

    // Shows the snapshot of the last run while nothing else is there. Waits until it is read.
    void loadCachedArchiveLibraryIfNeeded();

    // Shows a location no longer, and removes the copy of its index. Its mail goes with the next load.
    void dropLocation(const std::string& root);

    // Looks again which locations are connected and, once a live load has been published, which of their
    // files are there. `looksEnded` follows where there are locations; after a live load that is under way,
    // once more.
    void refreshArchiveLocationConnectionStates();

    [[nodiscard]] bool isLooking() const { return lookTask_.isRunning(); }

  Q_SIGNALS:
    void archivedEntriesChanged();
    void archiveLocationsChanged();
    void archivedBaseIDsChanged();
    void archivedFilesChanged();
    void loadStarted();
    // A live load has been published.
    void loadFinished();
    // What a look has found is published.
    void looksEnded();
    // The index of an archive isn't the one that was read.
    void loadWanted();

  private:
    [[nodiscard]] bool isLoadNeedless(const std::vector<std::string>& roots) const;
    void startLoad(LibraryLoadInput input);
    void applyLoadedArchiveIndex(LibraryLoadResult result, double seconds);
    void adoptLocations(const LibraryLoadResult& result);
    [[nodiscard]] std::optional<ArchiveLibrarySnapshot> readSnapshot() const;
    void publish(SharedLibrary library, std::vector<ArchiveLocation> locations,
                 SharedSearchIndexes searchIndexes, SharedArchivedFiles files);
    void pruneSearchIndexes();
    void applyLooks(ArchiveLooks looks);
    bool applyConnections(const std::map<std::string, bool>& connected);

    ModelContext& context_;
    Clock clock_;
    SharedLibrary library_ = std::make_shared<const ArchivedLibrary>();
    std::vector<ArchiveLocation> locations_;
    SharedSearchIndexes searchIndexes_ = std::make_shared<const SearchIndexTable>();
    SharedArchivedFiles files_ = std::make_shared<const ArchivedFiles>();
    GonePaths goneWithoutIndex_;
    std::vector<std::string> unreadableRoots_;
    IndexStates indexes_; // of which the library's entries are
    std::optional<DestinationIndex> destination_;
    bool looksAfterLoad_ = false;
    std::vector<std::string> loadingRoots_; // what the last load to be started was asked for
    std::vector<std::string> lastLoadedRoots_;
    std::optional<std::chrono::steady_clock::time_point> lastArchiveIndexLoadFinishedAt_;
    LibrarySnapshotWriter snapshotWriter_;
    TaskSlot archiveIndexLoadTask_;
    TaskSlot lookTask_;
    TaskSlot pruneTask_;
    TaskGroup forgetTask_;
};

} // namespace corvane
