#include <atomic>
#include <memory>
#include <optional>
#include <semaphore>
#include <string>
#include <vector>

#include <QTimer>

#include "model/tasks/task_slot.h"
#include "model_test.h"

namespace corvane::testing {
namespace {

struct HoldsAComponent {
    std::string text;
    const QTimer* timer;
    bool flag;
};

struct HoldsValues {
    std::string text;
    std::shared_ptr<const std::vector<int>> list;
    std::optional<bool> flag;
};

static_assert(JobInputs<HoldsValues> && !JobInputs<HoldsAComponent> && !JobInputs<QTimer*>);

// A job that says when it has begun and ends when it may.
struct Gates {
    std::binary_semaphore started{0};
    std::binary_semaphore mayGoOn{0};
    std::atomic<bool> sawStop{false};
};

using SharedGates = std::shared_ptr<Gates>;

std::string passGates(const SharedGates& gates, const ReportingTask<std::string>& task) {
    task.report("before ");
    gates->started.release();
    gates->mayGoOn.acquire();
    gates->sawStop = task.isCancelled();
    task.report("late ");
    return "result";
}

class TaskRunners : public ::testing::Test {
  protected:
    TaskRunners() { provideEventLoop(); }

    void startGated(TaskSlot& slot) {
        slot.startReporting<std::string>(
            TaskPriority::utility, gates_, &passGates, [this](const std::string& step) { shown_ += step; },
            [this](const std::string& result) { shown_ += result; });
        gates_->started.acquire();
    }

    TaskRunner runner_;
    SharedGates gates_ = std::make_shared<Gates>();
    std::string shown_;
};

TEST_F(TaskRunners, PublishNothingOfAJobThatWasReplacedWhileItRan) {
    TaskSlot slot(runner_);
    startGated(slot);
    slot.start(
        TaskPriority::utility, std::string("new"),
        [](const std::string& text, const TaskHandle&) { return text; },
        [this](const std::string& text) { shown_ += text; });
    gates_->mayGoOn.release();
    waitUntilIdle(runner_);
    EXPECT_TRUE(gates_->sawStop);
    EXPECT_EQ(shown_, "new") << "not even a step that was queued before the replacement";
}

TEST_F(TaskRunners, PublishNothingOfAJobThatWasCancelled) {
    TaskSlot slot(runner_);
    startGated(slot);
    slot.cancel();
    EXPECT_FALSE(slot.isRunning());
    gates_->mayGoOn.release();
    waitUntilIdle(runner_);
    EXPECT_TRUE(gates_->sawStop);
    EXPECT_EQ(shown_, "");
}

TEST_F(TaskRunners, PublishWhatAJobMadeUntilItWasAskedToStop) {
    TaskSlot slot(runner_);
    startGated(slot);
    slot.requestStop();
    gates_->mayGoOn.release();
    waitUntilIdle(runner_);
    EXPECT_TRUE(gates_->sawStop);
    EXPECT_EQ(shown_, "before late result");
    EXPECT_FALSE(slot.isRunning());
}

TEST_F(TaskRunners, AreQuietWhileAJobGoesOnAside) {
    TaskSlot slot(runner_);
    slot.start(TaskPriority::aside, gates_,
               [](const SharedGates& gates, const TaskHandle&) { gates->mayGoOn.acquire(); });
    EXPECT_TRUE(runner_.isQuiet());
    EXPECT_FALSE(runner_.isIdle());
    gates_->mayGoOn.release();
    waitUntilIdle(runner_);
    EXPECT_TRUE(runner_.isIdle());
}

TEST_F(TaskRunners, OutliveTheComponentThatStartedAJob) {
    {
        TaskSlot slot(runner_);
        startGated(slot);
        EXPECT_TRUE(slot.isRunning());
        TaskGroup group(runner_);
        group.start(
            TaskPriority::utility, 1, [](int number, const TaskHandle&) { return number; },
            [this](int) { shown_ += "of a group"; });
    }
    gates_->mayGoOn.release();
    waitUntilIdle(runner_);
    EXPECT_TRUE(gates_->sawStop);
    EXPECT_EQ(shown_, "");
}

TEST_F(TaskRunners, PublishOnlyPresentResultsOfEveryJobOfAGroup) {
    TaskGroup group(runner_);
    int sum = 0;
    for (const int number : {1, 2, 4, 8}) {
        group.start(
            TaskPriority::utility, number,
            [](int given, const TaskHandle&) { return given == 4 ? std::nullopt : std::optional(given); },
            [&sum](int given) { sum += given; });
    }
    group.start(
        TaskPriority::utility, 16, [](int, const TaskHandle&) { return std::shared_ptr<int>(); },
        [&sum](const std::shared_ptr<int>&) { sum += 16; });
    waitUntilIdle(runner_);
    EXPECT_EQ(sum, 11);
}

TEST_F(TaskRunners, AreIdleOnlyWhenJobsAndTheirStepsHaveEnded) {
    TaskSlot slot(runner_);
    int published = 0;
    int publishedAtIdle = -1;
    QObject::connect(&runner_, &TaskRunner::idle, [&] { publishedAtIdle = published; });
    const auto work = [](int, const TaskHandle&) {};
    slot.start(TaskPriority::utility, 1, work, [&] {
        ++published;
        // A publisher may start the next job of its own slot.
        slot.start(TaskPriority::utility, 2, work, [&] { ++published; });
    });
    waitUntilIdle(runner_);
    EXPECT_EQ(publishedAtIdle, 2);
    EXPECT_FALSE(slot.isRunning());
}

TEST_F(TaskRunners, StopEveryJobAtTheirEnd) {
    auto runner = std::make_unique<TaskRunner>();
    TaskSlot slot(*runner);
    slot.start(TaskPriority::utility, gates_, [](const SharedGates& gates, const TaskHandle& task) {
        const std::stop_callback wake(task.stopToken(), [&] { gates->mayGoOn.release(); });
        gates->started.release();
        gates->mayGoOn.acquire();
        gates->sawStop = task.isCancelled();
    });
    gates_->started.acquire();
    runner.reset();
    EXPECT_TRUE(gates_->sawStop);
}

} // namespace
} // namespace corvane::testing
