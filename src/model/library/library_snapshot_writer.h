// Keeps the library snapshot up to date. A failed write is ignored: a later start shows an older library, no
// more.
#pragma once

#include <vector>

#include "locations/loading/loaded_archives.h"
#include "model/model_context.h"
#include "model/tasks/latest_state_writer.h"
#include "records/stores/library_snapshot_store.h"

namespace corvane {

struct LibrarySnapshotState {
    SharedLibrary library;
    std::vector<ArchiveLocation> locations;
};

struct WriteLibrarySnapshot {
    ArchiveLibrarySnapshotStore store;

    void operator()(const LibrarySnapshotState& state) const;
};

class LibrarySnapshotWriter : public LatestStateWriter<LibrarySnapshotState, WriteLibrarySnapshot> {
  public:
    explicit LibrarySnapshotWriter(ModelContext& context);
};

} // namespace corvane
