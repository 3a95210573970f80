#include "model/library/library_snapshot_writer.h"

#include "records/stores/library_snapshot_store.h"

namespace corvane {

LibrarySnapshotWriter::LibrarySnapshotWriter(ModelContext& context)
  : LatestStateWriter(context.tasks, [store = ArchiveLibrarySnapshotStore(context.support)](
                                         const LibrarySnapshotState& state) {
      const SharedTextSet& baseIDs = *state.library->baseIDs;
      store.save(*state.library->entries, state.locations, {baseIDs.begin(), baseIDs.end()});
  }) {}

} // namespace corvane
