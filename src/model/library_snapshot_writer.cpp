#include "model/library_snapshot_writer.h"

namespace corvane {

void LibrarySnapshotWriter::save(SharedLibrary library, std::vector<ArchiveLocation> locations) {
    waiting_ = State{std::move(library), std::move(locations)};
    if (!isWriting_) startNext();
}

void LibrarySnapshotWriter::startNext() {
    isWriting_ = waiting_.has_value();
    if (!isWriting_) return;
    const State state = std::move(*waiting_);
    waiting_.reset();
    task_.start(TaskPriority::utility, [this, store = store_, state](const TaskHandle& task) {
        const SharedTextSet& baseIDs = *state.library->baseIDs;
        store.save(*state.library->entries, state.locations, {baseIDs.begin(), baseIDs.end()});
        task.onMain([this] { startNext(); });
    });
}

} // namespace corvane
