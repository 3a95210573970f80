// Background work of the model: one pattern for every long job.
//
// A component copies its inputs on the main thread and starts a job through its TaskSlot. Starting cancels
// the slot's earlier job. The job runs detached on a thread of the runner, looks at its stop token in loops,
// and comes back in short steps on the main thread. A step runs only while its slot still lives and the job
// hasn't been cancelled or replaced: a result that isn't wanted any more is dropped without a trace. Jobs
// hold values, never the component.
//
// The runner knows how many jobs and steps are under way, which is how a program without a window finds out
// that everything it started has ended.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>

#include <QObject>
#include <QThreadPool>

namespace corvane {

enum class TaskPriority {
    userInitiated, // the user waits for it
    utility,       // upkeep
};

// Lives on the main thread, before and after everything that uses it.
class TaskRunner : public QObject {
    Q_OBJECT

  public:
    explicit TaskRunner(QObject* parent = nullptr);

    // Requests every job to stop and waits for their ends.
    ~TaskRunner() override;

    // Runs a job. From any thread.
    void run(TaskPriority priority, std::stop_source stop, std::function<void()> job);

    // Lets go of something on a thread of the runner: hundreds of thousands of records take their time to go,
    // and a database that is closed is written to. From any thread.
    template <class Shared>
    void discard(std::shared_ptr<Shared> owned) {
        run(TaskPriority::utility, std::stop_source(std::nostopstate), [owned = std::move(owned)] {});
    }

    // Queues a step for the main thread. From any thread.
    void postToMain(std::function<void()> step);

    // No job runs and no step is queued. On the main thread.
    [[nodiscard]] bool isIdle() const { return pending_.load() == 0; }

  Q_SIGNALS:
    // On the main thread, whenever the last job or step has ended.
    void idle();

  private:
    void begin() { pending_.fetch_add(1); }

    void end();

    std::atomic<int> pending_{0};
    std::stop_source shutdown_;
    QThreadPool userPool_;
    QThreadPool utilityPool_;
};

// What a running job may use. Copied into its steps as needed.
class TaskHandle {
  public:
    [[nodiscard]] bool isCancelled() const { return stop_.stop_requested(); }

    [[nodiscard]] std::stop_token stopToken() const { return stop_.get_token(); }

    // Queues a step for the main thread, dropped if the job was cancelled or replaced by then.
    void onMain(std::function<void()> step) const;

  private:
    friend class TaskSlot;

    struct SlotState {
        std::uint64_t generation = 0;
    };

    TaskRunner* runner_ = nullptr;
    std::stop_source stop_;
    std::weak_ptr<SlotState> slot_;
    std::uint64_t generation_ = 0;
};

// The place of one kind of job. Lives with its component on the main thread; its end cancels the job.
class TaskSlot {
  public:
    explicit TaskSlot(TaskRunner& runner)
      : runner_(runner) {}

    TaskSlot(const TaskSlot&) = delete;
    TaskSlot& operator=(const TaskSlot&) = delete;

    ~TaskSlot() { cancel(); }

    // Cancels the earlier job and starts this one.
    void start(TaskPriority priority, std::function<void(const TaskHandle&)> job);

    // Asks the job to stop; none of its steps runs from here on.
    void cancel();

    // A job was started and neither ended nor was cancelled.
    [[nodiscard]] bool isRunning() const { return running_ != nullptr && running_->load(); }

  private:
    TaskRunner& runner_;
    std::shared_ptr<TaskHandle::SlotState> state_ = std::make_shared<TaskHandle::SlotState>();
    std::stop_source stop_{std::nostopstate};
    std::shared_ptr<std::atomic<bool>> running_;
};

} // namespace corvane
