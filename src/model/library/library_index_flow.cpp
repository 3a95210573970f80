#include "model/library/library_index_flow.h"

#include <utility>

#include <fmt/format.h>

#include "platform/stop_watch.h"

namespace corvane {

namespace {

constexpr double worthTelling = 0.02; // seconds

SharedLibraryIndex makeIndex(LibraryIndexInput input, const TaskHandle& task) {
    return ArchiveLibraryIndex::make(std::move(input), task.stopToken());
}

} // namespace

LibraryIndexFlow::LibraryIndexFlow(ModelContext& context, InputsProvider inputs, QObject* parent)
  : QObject(parent)
  , context_(context)
  , inputs_(std::move(inputs))
  , buildTask_(context.tasks) {}

void LibraryIndexFlow::rebuildLibraryIndexIfNeeded() {
    isWanted_ = true;
    onInputsChanged();
}

void LibraryIndexFlow::onInputsChanged() {
    if (!isWanted_) return;
    LibraryIndexInput input = inputs_();
    if (input == index_->input()) {
        buildTask_.cancel(); // what was on its way to another index has been taken back
        building_.reset();
        return;
    }
    if (building_ != input) startBuilding(std::move(input));
}

void LibraryIndexFlow::startBuilding(LibraryIndexInput input) {
    context_.startupLog.mark(
        fmt::format("ArchiveLibrary rebuildIndex begin entries={}", input.entries->size()));
    building_ = input;
    const platform::StopWatch watch;
    buildTask_.start(TaskPriority::userInitiated, std::move(input), &makeIndex,
                     [this, watch](SharedLibraryIndex index) { publish(std::move(index), watch.seconds()); });
}

void LibraryIndexFlow::publish(SharedLibraryIndex index, double seconds) {
    index_.swap(index);
    building_.reset();
    context_.tasks.discard(std::move(index));
    context_.startupLog.mark(
        fmt::format("ArchiveLibrary rebuildIndex end entries={} elapsed={:.3f}s", index_->size(), seconds));
    if (seconds >= worthTelling) {
        context_.performanceLog.mark(
            fmt::format("[Perf] ArchiveLibrary.rebuildIndex {:.3f}s entries={} accounts={}", seconds,
                        index_->size(), index_->accountOptions().size()));
    }
    Q_EMIT indexChanged();
}

} // namespace corvane
