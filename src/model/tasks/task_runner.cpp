#include "model/tasks/task_runner.h"

#include <QMetaObject>
#include <QThread>

namespace corvane {

namespace {

// Jobs block on disks and child processes, so there are more threads than processors.
constexpr int threadsOfPool = 8;

} // namespace

TaskRunner::TaskRunner(QObject* parent)
  : QObject(parent) {
    userPool_.setMaxThreadCount(threadsOfPool);
    utilityPool_.setMaxThreadCount(threadsOfPool);
    utilityPool_.setThreadPriority(QThread::LowPriority);
}

TaskRunner::~TaskRunner() {
    shutdown_.request_stop();
    userPool_.waitForDone();
    utilityPool_.waitForDone();
}

void TaskRunner::run(TaskPriority priority, std::stop_source stop, std::function<void()> job) {
    std::atomic<int>& count = countOf(priority);
    ++count;
    QThreadPool& pool = priority == TaskPriority::userInitiated ? userPool_ : utilityPool_;
    pool.start([this, &count, stop = std::move(stop), job = std::move(job)]() mutable {
        {
            const std::stop_callback stopAtShutdown(shutdown_.get_token(), [&stop] { stop.request_stop(); });
            job();
            // What the job captured is released before the runner may become idle.
            job = nullptr;
        }
        end(count);
    });
}

void TaskRunner::postToMain(std::function<void()> step) {
    ++pending_;
    QMetaObject::invokeMethod(
        this,
        [this, step = std::move(step)]() mutable {
            step();
            step = nullptr;
            end(pending_);
        },
        Qt::QueuedConnection);
}

// Whoever waits for either count looks again.
void TaskRunner::end(std::atomic<int>& count) {
    if (count.fetch_sub(1) != 1) return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (isIdle()) Q_EMIT idle();
        },
        Qt::QueuedConnection);
}

} // namespace corvane
