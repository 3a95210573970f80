// Writes states to the disk in the background, one at a time: a newer state that comes while one is being
// written waits for it and replaces any other that waits, so an older state never ends up on the disk. Main
// thread.
#pragma once

#include <memory>
#include <utility>

#include "model/tasks/task_slot.h"

namespace corvane {

// `Write` is a value with `void operator()(const State&) const`, which runs on a thread of the runner and
// ignores failures.
template <class State, class Write>
class LatestStateWriter {
  public:
    LatestStateWriter(TaskRunner& tasks, Write write)
      : write_(std::move(write))
      , task_(tasks) {}

    void save(State state) {
        waiting_ = std::make_shared<const State>(std::move(state));
        if (!isWriting_) startNext();
    }

  private:
    struct Job {
        Write write;
        std::shared_ptr<const State> state;
    };

    void startNext() {
        isWriting_ = waiting_ != nullptr;
        if (!isWriting_) return;
        task_.start(
            TaskPriority::utility, Job{write_, std::exchange(waiting_, nullptr)},
            [](const Job& job, const TaskHandle&) { job.write(*job.state); }, [this] { startNext(); });
    }

    Write write_;
    std::shared_ptr<const State> waiting_;
    bool isWriting_ = false;
    TaskSlot task_;
};

} // namespace corvane
