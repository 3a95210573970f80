#include "platform/threads/time_limited_worker.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <stop_token>
#include <thread>
#include <utility>

#include <pthread.h>
#include <signal.h>

#include "platform/threads/abandoned_jobs.h"
#include "text/mutex.h"

namespace corvane::platform {

namespace {

using Clock = std::chrono::steady_clock;

// Never destroyed: abandoned threads may outlive the statics of the program.
struct AbandonedJobs {
    text::Mutex mutex;
    text::Condition changed;
    std::size_t count GUARDED_BY(mutex) = 0;

    static AbandonedJobs& ofProcess() {
        static auto* const jobs = new AbandonedJobs;
        return *jobs;
    }

    void add() {
        const text::MutexLock lock(mutex);
        ++count;
    }

    void remove() {
        const text::MutexLock lock(mutex);
        --count;
        changed.notifyAll();
    }
};

} // namespace

// One thread with the job that it works on. The thread holds it too, so that either may go first.
class TimeLimitedWorker::Lane final : public JobLimit {
  public:
    static std::shared_ptr<Lane> start() {
        auto lane = std::make_shared<Lane>();
        std::thread([lane] { lane->work(); }).detach();
        return lane;
    }

    bool run(std::chrono::nanoseconds limit, std::function<void(JobLimit&)> job, const std::stop_token& stop,
             std::chrono::nanoseconds grace) {
        const std::stop_callback hurryAtStop(stop, [this, grace] { hurry(grace); });
        text::MutexLock lock(mutex_);
        job_ = std::move(job);
        limit_ = stop.stop_requested() ? std::min(limit, grace) : limit;
        deadline_ = Clock::now() + limit_;
        isDone_ = false;
        wake_.notifyOne();
        while (!isDone_) {
            const Clock::time_point deadline = deadline_;
            if (!done_.waitUntil(lock, deadline) && !isDone_ && deadline == deadline_) {
                isAbandoned_ = true;
                AbandonedJobs::ofProcess().add();
                return false;
            }
        }
        return true;
    }

    // Ends the thread when it has no job; to be called by the one who runs jobs.
    void finish() {
        const text::MutexLock lock(mutex_);
        isClosing_ = true;
        wake_.notifyOne();
    }

    void restart() override {
        const text::MutexLock lock(mutex_);
        deadline_ = Clock::now() + limit_;
    }

    [[nodiscard]] bool isAbandoned() const noexcept override { return isAbandoned_; }

  private:
    // From here on no step has longer than this.
    void hurry(std::chrono::nanoseconds grace) {
        const text::MutexLock lock(mutex_);
        limit_ = std::min(limit_, grace);
        deadline_ = std::min(deadline_, Clock::now() + grace);
        done_.notifyOne();
    }

    void work() {
        // A signal that ends the program politely must not interrupt a write to a network or FUSE disk.
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
        text::MutexLock lock(mutex_);
        while (!isAbandoned_) {
            wake_.wait(lock, [this]() REQUIRES(mutex_) { return job_ || isClosing_; });
            if (!job_) return;
            auto job = std::exchange(job_, nullptr);
            lock.unlock();
            // What the job owns goes before it counts as ended.
            std::exchange(job, nullptr)(*this);
            lock.lock();
            isDone_ = true;
            done_.notifyOne();
        }
        // On a busy machine a job may be given up before it is begun.
        auto neverBegun = std::exchange(job_, nullptr);
        lock.unlock();
        neverBegun = nullptr;
        AbandonedJobs::ofProcess().remove();
    }

    text::Mutex mutex_;
    text::Condition wake_;
    text::Condition done_;
    std::function<void(JobLimit&)> job_ GUARDED_BY(mutex_);
    std::chrono::nanoseconds limit_ GUARDED_BY(mutex_){};
    Clock::time_point deadline_ GUARDED_BY(mutex_);
    bool isDone_ GUARDED_BY(mutex_) = false;
    bool isClosing_ GUARDED_BY(mutex_) = false;
    std::atomic<bool> isAbandoned_ = false;
};

TimeLimitedWorker::~TimeLimitedWorker() {
    if (lane_) lane_->finish();
}

bool TimeLimitedWorker::run(std::chrono::nanoseconds limit, std::function<void(JobLimit&)> job,
                            const std::stop_token& stop, std::chrono::nanoseconds grace) {
    if (!lane_) lane_ = Lane::start();
    const bool hasEnded = lane_->run(limit, std::move(job), stop, grace);
    if (!hasEnded) lane_.reset();
    return hasEnded;
}

bool AbandonableFileLayer::permits() noexcept {
    if (!limit_.isAbandoned()) return true;
    errno = ECANCELED;
    return false;
}

bool hasAbandonedJobs() noexcept {
    AbandonedJobs& jobs = AbandonedJobs::ofProcess();
    const text::MutexLock lock(jobs.mutex);
    return jobs.count > 0;
}

void waitForAbandonedJobs() {
    AbandonedJobs& jobs = AbandonedJobs::ofProcess();
    text::MutexLock lock(jobs.mutex);
    jobs.changed.wait(lock, [&]() REQUIRES(jobs.mutex) { return jobs.count == 0; });
}

} // namespace corvane::platform
