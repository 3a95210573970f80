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
    begin();
    QThreadPool& pool = priority == TaskPriority::userInitiated ? userPool_ : utilityPool_;
    pool.start([this, stop = std::move(stop), job = std::move(job)]() mutable {
        {
            const std::stop_callback stopAtShutdown(shutdown_.get_token(), [&stop] { stop.request_stop(); });
            job();
            // What the job captured goes before the runner may be told idle.
            job = nullptr;
        }
        end();
    });
}

void TaskRunner::postToMain(std::function<void()> step) {
    begin();
    QMetaObject::invokeMethod(
        this,
        [this, step = std::move(step)]() mutable {
            step();
            step = nullptr;
            end();
        },
        Qt::QueuedConnection);
}

void TaskRunner::end() {
    if (pending_.fetch_sub(1) != 1) return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (isIdle()) Q_EMIT idle();
        },
        Qt::QueuedConnection);
}

void TaskHandle::onMain(std::function<void()> step) const {
    runner_->postToMain([slot = slot_, generation = generation_, step = std::move(step)] {
        const auto state = slot.lock();
        if (state && state->generation == generation) step();
    });
}

void TaskSlot::start(TaskPriority priority, std::function<void(const TaskHandle&)> job) {
    cancel();
    stop_ = std::stop_source();
    running_ = std::make_shared<std::atomic<bool>>(true);
    TaskHandle handle;
    handle.runner_ = &runner_;
    handle.stop_ = stop_;
    handle.slot_ = state_;
    handle.generation_ = state_->generation;
    runner_.run(priority, stop_, [handle, running = running_, job = std::move(job)] {
        job(handle);
        running->store(false);
    });
}

void TaskSlot::cancel() {
    ++state_->generation;
    if (stop_.stop_possible()) stop_.request_stop();
    running_.reset();
}

} // namespace corvane
