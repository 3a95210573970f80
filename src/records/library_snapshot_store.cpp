#include "records/library_snapshot_store.h"

#include "records/cache_file.h"
#include "records/record_forms.h"

namespace corvane {

template <>
struct JsonForm<ArchiveLibrarySnapshot> {
    using R = ArchiveLibrarySnapshot;
    static constexpr auto fields =
        std::tuple{jsonField("cachedAt", &R::cachedAt), jsonField("entries", &R::entries),
                   jsonField("locations", &R::locations), jsonField("archivedBaseIDs", &R::archivedBaseIDs)};
};

namespace {

constexpr std::string_view fileName = "archive-library-snapshot.json";

} // namespace

std::string ArchiveLibrarySnapshotStore::snapshotPathForDiagnostics() const {
    return support_.filePath(fileName);
}

std::optional<ArchiveLibrarySnapshot> ArchiveLibrarySnapshotStore::load() const {
    return readRecordFile<ArchiveLibrarySnapshot>(support_.filePath(fileName));
}

void ArchiveLibrarySnapshotStore::save(const std::vector<ArchivedEntry>& entries,
                                       const std::vector<ArchiveLocation>& locations,
                                       const std::vector<SharedText>& archivedBaseIDs) const {
    try {
        // The texts are shared, so the copy into the record costs little next to the encoding.
        support_.writeFile(fileName, encodeJson(ArchiveLibrarySnapshot{currentTimestamp(), entries, locations,
                                                                       archivedBaseIDs}));
    } catch (const std::system_error&) { // a later start is slower, no more
    }
}

} // namespace corvane
