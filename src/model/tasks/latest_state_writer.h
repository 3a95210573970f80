// Writes states to the disk in the background, one at a time: a newer state that comes while one is being
// written waits for it and replaces any other that waits, so an older state never ends up on the disk. Main
// thread.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "model/tasks/task_runner.h"

namespace corvane {

template <class State>
class LatestStateWriter {
  public:
    // `write` runs on a thread of the runner and ignores failures.
    LatestStateWriter(TaskRunner& tasks, std::function<void(const State&)> write)
      : write_(std::move(write))
      , task_(tasks) {}

    void save(State state) {
        waiting_ = std::make_shared<const State>(std::move(state));
        if (!isWriting_) startNext();
    }

  private:
    void startNext() {
        isWriting_ = waiting_ != nullptr;
        if (!isWriting_) return;
        const auto state = std::exchange(waiting_, nullptr);
        task_.start(TaskPriority::utility, [this, write = write_, state](const TaskHandle& task) {
            write(*state);
            task.onMain([this] { startNext(); });
        });
    }

    std::function<void(const State&)> write_;
    std::shared_ptr<const State> waiting_;
    bool isWriting_ = false;
    TaskSlot task_;
};

} // namespace corvane
