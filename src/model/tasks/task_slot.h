// Background work of the model: one pattern for every long job.
//
// A component starts a job on the main thread with three things: its inputs, which are copied values; the
// work, a function or a lambda without captures that runs on a thread of the runner and looks at its stop
// token in loops; and what publishes the result, on the main thread. Work that gets only values can't touch
// the component, and the compiler sees to it. The publisher may: it runs only while the slot lives and the
// job was neither cancelled nor replaced, so a result that isn't wanted any more is dropped without a trace.
//
// A result that is an empty optional or a null pointer means "no result" (what a cancelled loop returns):
// nothing is published then.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "model/tasks/job_inputs.h"
#include "model/tasks/task_runner.h"

namespace corvane {

// What running work may ask.
class TaskHandle {
  public:
    explicit TaskHandle(std::stop_token stop)
      : stop_(std::move(stop)) {}

    [[nodiscard]] bool isCancelled() const { return stop_.stop_requested(); }

    [[nodiscard]] const std::stop_token& stopToken() const { return stop_; }

  private:
    std::stop_token stop_;
};

// The same for work that reports steps before its result.
template <class Step>
class ReportingTask : public TaskHandle {
  public:
    ReportingTask(std::stop_token stop, std::function<void(Step)> post)
      : TaskHandle(std::move(stop))
      , post_(std::move(post)) {}

    // Queues the step for the main thread. Dropped like a result that isn't wanted any more.
    void report(Step step) const { post_(std::move(step)); }

  private:
    std::function<void(Step)> post_;
};

namespace tasks {

// A job as the main thread sees it. Whoever wants the result owns it; the running work has a weak reference,
// looked at on the main thread only.
struct WantedJob {
    std::stop_source stop;
    bool hasEnded = false;
};

template <class Publish>
struct PublishedJob : WantedJob {
    explicit PublishedJob(Publish publisher)
      : publish(std::move(publisher)) {}

    Publish publish;
};

template <class Publish>
void publishResult(Publish& publish, std::monostate&&) {
    publish();
}

template <class Publish, class Result>
void publishResult(Publish& publish, std::optional<Result>&& result) {
    if (result) publish(std::move(*result));
}

template <class Publish, class Result>
void publishResult(Publish& publish, std::shared_ptr<Result>&& result) {
    if (result) publish(std::move(result));
}

template <class Publish, class Result>
void publishResult(Publish& publish, Result&& result) {
    publish(std::move(result));
}

// The result of the work; std::monostate for void.
template <class Work, class Inputs, class Handle>
auto resultOf(Work work, Inputs&& inputs, const Handle& handle) {
    if constexpr (std::is_void_v<std::invoke_result_t<Work, Inputs&&, const Handle&>>) {
        work(std::move(inputs), handle);
        return std::monostate();
    } else {
        return work(std::move(inputs), handle);
    }
}

// Runs the work with a handle that `makeHandle` makes of its stop token and of the job itself.
template <class Inputs, class Work, class Publish, class MakeHandle>
std::shared_ptr<WantedJob> launch(TaskRunner& runner, TaskPriority priority, Inputs inputs, Work work,
                                  Publish publish, MakeHandle makeHandle) {
    static_assert(JobInputs<Inputs>, "inputs are values, without a pointer to an object of the main thread");
    static_assert(Captureless<Work>, "work gets all that it needs as its inputs and captures nothing");
    const auto job = std::make_shared<PublishedJob<Publish>>(std::move(publish));
    auto run = [&runner, work, wanted = std::weak_ptr(job), handle = makeHandle(job->stop.get_token()),
                given = std::make_shared<Inputs>(std::move(inputs))] {
        auto made = resultOf(work, std::move(*given), handle);
        auto result = std::make_shared<decltype(made)>(std::move(made));
        runner.postToMain([&runner, wanted, result]() mutable {
            const auto present = wanted.lock();
            // It may hold a great deal.
            if (!present) return runner.discard(std::move(result));
            present->hasEnded = true;
            // The slot may start its next job in here.
            Publish publishOnce = std::move(present->publish);
            publishResult(publishOnce, std::move(*result));
        });
    };
    runner.run(priority, job->stop, std::move(run));
    return job;
}

template <class Inputs, class Work, class Publish>
std::shared_ptr<WantedJob> launch(TaskRunner& runner, TaskPriority priority, Inputs inputs, Work work,
                                  Publish publish) {
    return launch(runner, priority, std::move(inputs), work, std::move(publish),
                  [](std::stop_token stop) { return TaskHandle(std::move(stop)); });
}

} // namespace tasks

// The place of one kind of job. Lives with its component on the main thread; its end cancels the job.
class TaskSlot {
  public:
    explicit TaskSlot(TaskRunner& runner)
      : runner_(runner) {}

    TaskSlot(const TaskSlot&) = delete;
    TaskSlot& operator=(const TaskSlot&) = delete;

    ~TaskSlot() { cancel(); }

    // Cancels the earlier job and starts this one: `work(Inputs, const TaskHandle&)`, then `publish(Result)`,
    // or `publish()` for work that returns void.
    template <class Inputs, class Work, class Publish>
    void start(TaskPriority priority, Inputs inputs, Work work, Publish publish) {
        cancel();
        job_ = tasks::launch(runner_, priority, std::move(inputs), work, std::move(publish));
    }

    // The same for work of which nothing is published.
    template <class Inputs, class Work>
    void start(TaskPriority priority, Inputs inputs, Work work) {
        start(priority, std::move(inputs), work, [](auto&&...) {});
    }

    // The same for `work(Inputs, const ReportingTask<Step>&)`: each step that it reports goes to
    // `onStep(Step)` on the main thread, in their order and before the result.
    template <class Step, class Inputs, class Work, class OnStep, class Publish>
    void startReporting(TaskPriority priority, Inputs inputs, Work work, OnStep onStep, Publish publish) {
        cancel();
        const auto steps = std::make_shared<std::function<void(Step)>>(std::move(onStep));
        steps_ = steps;
        const auto post = [&runner = runner_, wanted = std::weak_ptr(steps)](Step step) {
            runner.postToMain([wanted, step = std::move(step)]() mutable {
                if (const auto present = wanted.lock()) (*present)(std::move(step));
            });
        };
        job_ =
            tasks::launch(runner_, priority, std::move(inputs), work, std::move(publish),
                          [&](std::stop_token stop) { return ReportingTask<Step>(std::move(stop), post); });
    }

    // Asks the job to stop; neither a step nor its result is published from here on.
    void cancel() {
        requestStop();
        job_.reset();
        steps_.reset();
    }

    // Asks the job to stop early; its steps and its result are still published.
    void requestStop() {
        if (job_) job_->stop.request_stop();
    }

    // A job was started, wasn't cancelled, and its result hasn't reached the main thread.
    [[nodiscard]] bool isRunning() const { return job_ != nullptr && !job_->hasEnded; }

  private:
    TaskRunner& runner_;
    std::shared_ptr<tasks::WantedJob> job_;
    std::shared_ptr<void> steps_;
};

// Several jobs of one kind at a time. Lives like a TaskSlot; its end cancels them all.
class TaskGroup {
  public:
    explicit TaskGroup(TaskRunner& runner)
      : runner_(runner) {}

    TaskGroup(const TaskGroup&) = delete;
    TaskGroup& operator=(const TaskGroup&) = delete;

    ~TaskGroup() {
        for (const auto& job : jobs_) job->stop.request_stop();
    }

    // Starts one more, as TaskSlot::start does.
    template <class Inputs, class Work, class Publish>
    void start(TaskPriority priority, Inputs inputs, Work work, Publish publish) {
        std::erase_if(jobs_, [](const auto& job) { return job->hasEnded; });
        jobs_.push_back(tasks::launch(runner_, priority, std::move(inputs), work, std::move(publish)));
    }

  private:
    TaskRunner& runner_;
    std::vector<std::shared_ptr<tasks::WantedJob>> jobs_;
};

} // namespace corvane
