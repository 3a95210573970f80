#include "model/library/library_snapshot_writer.h"

namespace corvane {

void WriteLibrarySnapshot::operator()(const LibrarySnapshotState& state) const {
    const SharedTextSet& baseIDs = *state.library->baseIDs;
    store.save(*state.library->entries, state.locations, {baseIDs.begin(), baseIDs.end()});
}

LibrarySnapshotWriter::LibrarySnapshotWriter(ModelContext& context)
  : LatestStateWriter(context.tasks, {ArchiveLibrarySnapshotStore(context.support)}) {}

} // namespace corvane
