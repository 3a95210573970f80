#include "records/stores/library_snapshot_store.h"

#include <tuple>

#include "records/json/json_pieces.h"
#include "records/json/record_forms.h"

namespace corvane {

namespace {

constexpr std::string_view fileName = "archive-library-snapshot.json";

// A snapshot to be written, by reference: the lists are large.
struct SnapshotContent {
    Date cachedAt{};
    const std::vector<ArchivedEntry>* entries;
    const std::vector<ArchiveLocation>* locations;
    const std::vector<SharedText>* archivedBaseIDs;
};

template <class R>
constexpr auto snapshotFields =
    std::tuple{jsonField("cachedAt", &R::cachedAt), jsonField("entries", &R::entries),
               jsonField("locations", &R::locations), jsonField("archivedBaseIDs", &R::archivedBaseIDs)};

} // namespace

template <>
struct JsonForm<ArchiveLibrarySnapshot> {
    static constexpr auto fields = snapshotFields<ArchiveLibrarySnapshot>;
};

template <>
struct JsonForm<SnapshotContent> {
    static constexpr auto fields = snapshotFields<SnapshotContent>;
};

std::string ArchiveLibrarySnapshotStore::snapshotPathForDiagnostics() const {
    return support_.filePath(fileName);
}

std::optional<ArchiveLibrarySnapshot> ArchiveLibrarySnapshotStore::load() const {
    return readRecordFileInPieces<ArchiveLibrarySnapshot>(support_.filePath(fileName));
}

void ArchiveLibrarySnapshotStore::save(const std::vector<ArchivedEntry>& entries,
                                       const std::vector<ArchiveLocation>& locations,
                                       const std::vector<SharedText>& archivedBaseIDs) const {
    const SnapshotContent content{currentTimestamp(), &entries, &locations, &archivedBaseIDs};
    std::ignore = support_.writeFile(
        fileName, [&](const platform::ByteSink& sink) { encodeJsonInPieces(content, sink); });
}

} // namespace corvane
