#include "model/tasks/task_runner.h"

#include <semaphore>

#include "model_test.h"

namespace corvane {
namespace {

using testing::waitUntilIdle;

class TaskRunners : public ::testing::Test {
  protected:
    TaskRunners() { testing::provideEventLoop(); }

    TaskRunner runner_;
};

TEST_F(TaskRunners, DropTheStepsOfAJobThatWasReplacedWhileItRan) {
    TaskSlot slot(runner_);
    std::binary_semaphore started{0};
    std::binary_semaphore mayGoOn{0};
    std::string shown;
    slot.start(TaskPriority::utility, [&](const TaskHandle& task) {
        task.onMain([&] { shown += "before "; });
        started.release();
        mayGoOn.acquire();
        EXPECT_TRUE(task.isCancelled());
        task.onMain([&] { shown += "late "; });
    });
    started.acquire();
    slot.start(TaskPriority::utility, [&](const TaskHandle& task) { task.onMain([&] { shown += "new"; }); });
    mayGoOn.release();
    waitUntilIdle(runner_);
    EXPECT_EQ(shown, "new") << "not even a step that was queued before the replacement";
}

TEST_F(TaskRunners, OutliveTheComponentThatStartedAJob) {
    std::binary_semaphore mayGoOn{0};
    bool stepRan = false;
    bool jobEnded = false;
    {
        TaskSlot slot(runner_);
        slot.start(TaskPriority::userInitiated, [&](const TaskHandle& task) {
            mayGoOn.acquire();
            task.onMain([&] { stepRan = true; });
            jobEnded = true;
        });
        EXPECT_TRUE(slot.isRunning());
    }
    mayGoOn.release();
    waitUntilIdle(runner_);
    EXPECT_TRUE(jobEnded);
    EXPECT_FALSE(stepRan);
}

TEST_F(TaskRunners, TellIdleOnlyWhenJobsAndTheirStepsHaveEnded) {
    TaskSlot first(runner_);
    TaskSlot second(runner_);
    int steps = 0;
    int stepsAtIdle = -1;
    QObject::connect(&runner_, &TaskRunner::idle, [&] { stepsAtIdle = steps; });
    first.start(TaskPriority::utility, [&](const TaskHandle& task) {
        task.onMain([&] {
            ++steps;
            // A step may start the next job.
            second.start(TaskPriority::utility,
                         [&](const TaskHandle& next) { next.onMain([&] { ++steps; }); });
        });
    });
    waitUntilIdle(runner_);
    EXPECT_EQ(stepsAtIdle, 2);
    EXPECT_FALSE(first.isRunning());
}

TEST_F(TaskRunners, StopEveryJobAtTheirEnd) {
    auto runner = std::make_unique<TaskRunner>();
    std::atomic<bool> sawStop{false};
    std::binary_semaphore started{0};
    TaskSlot slot(*runner);
    slot.start(TaskPriority::utility, [&](const TaskHandle& task) {
        std::binary_semaphore stopped{0};
        const std::stop_callback wake(task.stopToken(), [&] { stopped.release(); });
        started.release();
        stopped.acquire();
        sawStop = true;
    });
    started.acquire();
    runner.reset();
    EXPECT_TRUE(sawStop);
}

} // namespace
} // namespace corvane
