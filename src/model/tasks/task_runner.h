// The threads behind the model. Background jobs are started through a TaskSlot or a TaskGroup, never here.
//
// The runner knows how many jobs and steps are under way, which is how a program without a window finds out
// that everything it started has ended.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

#include <QObject>
#include <QThreadPool>

namespace corvane {

enum class TaskPriority {
    userInitiated, // the user waits for it
    utility,       // upkeep
    aside,         // upkeep of which nothing else needs the result
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

    // Releases something on a thread of the runner: hundreds of thousands of records take their time to go,
    // and a database that is closed is written to. From any thread.
    template <class Shared>
    void discard(std::shared_ptr<Shared> owned) {
        run(TaskPriority::utility, std::stop_source(std::nostopstate), [owned = std::move(owned)] {});
    }

    // Queues a step for the main thread. From any thread.
    void postToMain(std::function<void()> step);

    // No job runs and no step is queued. On the main thread.
    [[nodiscard]] bool isIdle() const { return isQuiet() && aside_.load() == 0; }

    // The same but for jobs that go on aside.
    [[nodiscard]] bool isQuiet() const { return pending_.load() == 0; }

  Q_SIGNALS:
    // On the main thread, whenever the last job or step has ended.
    void idle();

  private:
    std::atomic<int>& countOf(TaskPriority priority) {
        return priority == TaskPriority::aside ? aside_ : pending_;
    }

    void end(std::atomic<int>& count);

    std::atomic<int> pending_{0};
    std::atomic<int> aside_{0};
    std::stop_source shutdown_;
    QThreadPool userPool_;
    QThreadPool utilityPool_;
};

} // namespace corvane
