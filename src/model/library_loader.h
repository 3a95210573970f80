// All mail that was ever archived, over all archive folders that are known or can be found, also on disks
// that aren't connected. Main thread; the loading is one background job, and a newer one replaces it.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "model/loaded_archives.h"
#include "model/model_context.h"
#include "records/library_snapshot_store.h"

namespace corvane {

class LibraryLoader : public QObject {
    Q_OBJECT

  public:
    explicit LibraryLoader(ModelContext& context, QObject* parent = nullptr);

    [[nodiscard]] const SharedEntryList& archivedEntries() const { return content_.entries; }

    [[nodiscard]] const std::vector<ArchiveLocation>& archiveLocations() const { return content_.locations; }

    // Base ids of everything archived: the only link between a scan and an archive.
    [[nodiscard]] const std::shared_ptr<const SharedTextSet>& archivedEmailBaseIDs() const {
        return content_.baseIDs;
    }

    [[nodiscard]] std::int64_t archivedEmailBaseIDsToken() const { return baseIDsToken_; }

    // The entry of a message's base id; null without one.
    [[nodiscard]] const ArchivedEntry* archivedEntryByBaseID(std::string_view baseID) const;

    // Index of the current destination; null without one.
    [[nodiscard]] const std::shared_ptr<const EmailArchiveIndex>& emailArchiveIndex() const {
        return content_.destinationIndex;
    }

    // Reads all archives. Unless forced, nothing happens while the same roots are being read, or were within
    // the last two seconds.
    void loadEmailArchiveIndex(const std::optional<std::string>& destination, bool force);

    // Publishes the snapshot of the last load, unless entries are there already. Reads its file on the main
    // thread: the library is to be there with the first frame.
    void loadCachedArchiveLibraryIfNeeded();

    // Tests in the background which locations can be reached.
    void refreshArchiveLocationConnectionStates();

    [[nodiscard]] const ArchiveLocation* location(const std::string& rootPath) const;

  Q_SIGNALS:
    void archivedEntriesChanged();
    void archiveLocationsChanged();
    void archivedBaseIDsChanged();
    void loadFinished();

  private:
    struct LoadJob;
    struct LoadResult;

    static std::optional<LoadResult> load(const LoadJob& job, const std::stop_token& stop);
    static std::optional<LoadedArchive> loadRoot(const LoadJob& job, const std::string& root,
                                                 LoadResult& result);
    void applyLoadedArchiveIndex(LoadResult& result, const std::string& signature,
                                 std::chrono::steady_clock::time_point start);
    void publish(LibraryContent content);
    void unforget(const std::vector<std::string>& roots);
    [[nodiscard]] std::vector<std::string>
    candidateRoots(const std::optional<std::string>& destination) const;

    ModelContext& context_;
    ArchiveLibrarySnapshotStore snapshots_;
    LibraryContent content_;
    std::int64_t baseIDsToken_ = 0;
    std::string loadSignature_; // of the running load
    std::string lastLoadSignature_;
    std::optional<std::chrono::steady_clock::time_point> lastLoadFinishedAt_;
    TaskSlot loadTask_;
    TaskSlot connectionTask_;
};

} // namespace corvane
