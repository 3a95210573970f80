#include "archive/time_limited_worker.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace corvane::archive {

struct TimeLimitedWorker::Shared {
    std::mutex mutex;
    std::condition_variable changed;
    std::function<void()> job;
    bool isBusy = false;
    bool isDismissed = false;

    void serve() {
        std::unique_lock lock(mutex);
        while (true) {
            changed.wait(lock, [this] { return job != nullptr || isDismissed; });
            if (job == nullptr) return;
            std::function<void()> current = std::exchange(job, nullptr);
            lock.unlock();
            current();
            current = nullptr;
            lock.lock();
            isBusy = false;
            changed.notify_all();
        }
    }
};

TimeLimitedWorker::~TimeLimitedWorker() {
    dismiss();
}

void TimeLimitedWorker::dismiss() {
    if (!thread_) return;
    {
        const std::scoped_lock lock(thread_->mutex);
        thread_->isDismissed = true;
    }
    thread_->changed.notify_all();
    thread_.reset();
}

bool TimeLimitedWorker::run(std::function<void()> job) {
    if (!thread_) {
        thread_ = std::make_shared<Shared>();
        std::thread([shared = thread_] { shared->serve(); }).detach();
    }
    std::unique_lock lock(thread_->mutex);
    thread_->job = std::move(job);
    thread_->isBusy = true;
    thread_->changed.notify_all();
    if (thread_->changed.wait_for(lock, limit_, [this] { return !thread_->isBusy; })) return true;
    lock.unlock();
    dismiss();
    return false;
}

} // namespace corvane::archive
