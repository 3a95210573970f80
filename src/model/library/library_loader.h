// What is archived, over all archives that are known or can be found, also on disks that aren't connected.
// Main thread; disks are touched by background tasks only, but for the snapshot that is read at start.
//
// The library shows in turn nothing, the snapshot of the last run, the live state. All fields of one state
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

#include "locations/library_load.h"
#include "locations/loaded_archives.h"
#include "model/library/library_snapshot_writer.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"
#include "records/stores/library_snapshot_store.h"

namespace corvane {

// Filters of the library's list; absent means all.
struct LibraryFilters {
    std::optional<std::string> location;
    std::optional<std::string> account;
    std::optional<std::string> mailbox;

    friend bool operator==(const LibraryFilters&, const LibraryFilters&) = default;
};

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

    // Raised each time the base ids become others.
    [[nodiscard]] std::int64_t archivedEmailBaseIDsToken() const { return baseIDsToken_; }

    // Of several variants or archives of one message, one. Null when it isn't archived; valid until the next
    // change.
    [[nodiscard]] const ArchivedEntry* archivedEntryByBaseID(std::string_view baseID) const {
        return library_->entryByBaseID(baseID);
    }

    // The index of the destination of the last load; nothing when the library doesn't hold it. A copy.
    [[nodiscard]] std::optional<EmailArchiveIndex> emailArchiveIndex() const;

    // Of the archives of the last live load; never null, and empty before it.
    [[nodiscard]] const SharedSearchIndexes& locationSearchIndexes() const { return searchIndexes_; }

    // The first location with that root; null when there is none.
    [[nodiscard]] const ArchiveLocation* location(std::string_view rootPath) const;

    [[nodiscard]] const LibraryFilters& libraryFilters() const { return filters_; }

    void setLibraryFilters(LibraryFilters filters);

    // Starts a live load. Unless forced, none is started over the same roots while one runs or shortly after
    // one.
    void loadEmailArchiveIndex(const std::optional<std::string>& currentDestination, bool force);

    // What the base ids of a load are given to before they are published, on its thread.
    void setBaseIDsPreparation(std::function<void(const std::shared_ptr<const SharedTextSet>&)> prepare) {
        prepareBaseIDs_ = std::move(prepare);
    }

    [[nodiscard]] bool isLoading() const { return isLoading_; }

    // Shows the snapshot of the last run while nothing else is there. Reads it on the calling thread.
    void loadCachedArchiveLibraryIfNeeded();

    // Tests again which locations are connected.
    void refreshArchiveLocationConnectionStates();

  Q_SIGNALS:
    void archivedEntriesChanged();
    void archiveLocationsChanged();
    void archivedBaseIDsChanged();
    void libraryFiltersChanged();
    void loadStarted();
    // A live load has been published.
    void loadFinished();

  private:
    using ConnectionStates = std::map<std::string, bool>; // by root

    [[nodiscard]] bool isLoadNeedless(const std::string& signature) const;
    void startLoad(LibraryLoadInput input, const std::string& signature);
    void applyLoadedArchiveIndex(LibraryLoadResult result, const std::string& signature, double seconds);
    void adoptLocations(const LibraryLoadResult& result);
    [[nodiscard]] std::optional<ArchiveLibrarySnapshot> readSnapshot() const;
    void publish(SharedLibrary library, std::vector<ArchiveLocation> locations,
                 SharedSearchIndexes searchIndexes);
    void pruneSearchIndexes();
    void applyConnectionStates(const ConnectionStates& states);

    ModelContext& context_;
    Clock clock_;
    SharedLibrary library_ = std::make_shared<const ArchivedLibrary>();
    std::vector<ArchiveLocation> locations_;
    SharedSearchIndexes searchIndexes_ = std::make_shared<const SearchIndexTable>();
    std::int64_t baseIDsToken_ = 0;
    std::function<void(const std::shared_ptr<const SharedTextSet>&)> prepareBaseIDs_;
    std::optional<DestinationIndex> destination_;
    LibraryFilters filters_;
    bool isLoading_ = false;
    bool testConnectionsAfterLoad_ = false;
    std::string archiveIndexLoadSignature_;
    std::string lastArchiveIndexLoadSignature_;
    std::optional<std::chrono::steady_clock::time_point> lastArchiveIndexLoadFinishedAt_;
    LibrarySnapshotWriter snapshotWriter_;
    TaskSlot archiveIndexLoadTask_;
    TaskSlot connectionTask_;
    TaskSlot pruneTask_;
};

} // namespace corvane
