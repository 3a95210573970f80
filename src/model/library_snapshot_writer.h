// Writes the library snapshot in the background, one state at a time: a newer state that comes while one is
// being written waits for it and replaces any other that waits, so an older state never ends up on the disk.
// Main thread.
#pragma once

#include <optional>
#include <vector>

#include "model/loaded_archives.h"
#include "model/model_context.h"
#include "records/library_snapshot_store.h"

namespace corvane {

class LibrarySnapshotWriter {
  public:
    explicit LibrarySnapshotWriter(ModelContext& context)
      : store_(context.support)
      , task_(context.tasks) {}

    // A failed write is ignored: a later start shows an older library, no more.
    void save(SharedLibrary library, std::vector<ArchiveLocation> locations);

  private:
    struct State {
        SharedLibrary library;
        std::vector<ArchiveLocation> locations;
    };

    void startNext();

    ArchiveLibrarySnapshotStore store_;
    std::optional<State> waiting_;
    bool isWriting_ = false;
    TaskSlot task_;
};

} // namespace corvane
