// "archive-library-snapshot.json": the library as last seen, also of disks that aren't connected.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "records/archived/archive_records.h"
#include "records/stores/app_support.h"

namespace corvane {

struct ArchiveLibrarySnapshot {
    Date cachedAt{};
    std::vector<ArchivedEntry> entries;
    std::vector<ArchiveLocation> locations;
    std::vector<SharedText> archivedBaseIDs;
};

class ArchiveLibrarySnapshotStore {
  public:
    explicit ArchiveLibrarySnapshotStore(CorvaneAppSupport support)
      : support_(std::move(support)) {}

    // For log lines only.
    [[nodiscard]] std::string snapshotPathForDiagnostics() const;

    // Absent when there is no file. Throws std::system_error or JsonError.
    [[nodiscard]] std::optional<ArchiveLibrarySnapshot> load() const;

    // A failure is ignored.
    void save(const std::vector<ArchivedEntry>& entries, const std::vector<ArchiveLocation>& locations,
              const std::vector<SharedText>& archivedBaseIDs) const;

  private:
    CorvaneAppSupport support_;
};

} // namespace corvane
