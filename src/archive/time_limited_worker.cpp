#include "archive/time_limited_worker.h"

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include <pthread.h>
#include <signal.h>

namespace corvane::archive {

namespace {

using Clock = std::chrono::steady_clock;

// Never destroyed: abandoned threads may outlive the statics of the program.
struct AbandonedJobs {
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t count = 0;

    static AbandonedJobs& ofProcess() {
        static auto* const jobs = new AbandonedJobs;
        return *jobs;
    }

    void add() {
        const std::lock_guard lock(mutex);
        ++count;
    }

    void remove() {
        const std::lock_guard lock(mutex);
        --count;
        changed.notify_all();
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

    bool run(std::chrono::nanoseconds limit, std::function<void(JobLimit&)> job) {
        std::unique_lock lock(mutex_);
        job_ = std::move(job);
        limit_ = limit;
        deadline_ = Clock::now() + limit_;
        isDone_ = false;
        wake_.notify_one();
        while (!isDone_) {
            const Clock::time_point deadline = deadline_;
            if (done_.wait_until(lock, deadline) == std::cv_status::timeout && !isDone_ &&
                deadline == deadline_) {
                isAbandoned_ = true;
                AbandonedJobs::ofProcess().add();
                return false;
            }
        }
        return true;
    }

    // Ends the thread when it has no job; to be called by the one who runs jobs.
    void finish() {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
        wake_.notify_one();
    }

    void restart() override {
        const std::lock_guard lock(mutex_);
        deadline_ = Clock::now() + limit_;
    }

    [[nodiscard]] bool isAbandoned() const noexcept override { return isAbandoned_; }

  private:
    void work() {
        // A signal that ends the program politely must not interrupt a write to a network or FUSE disk.
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
        std::unique_lock lock(mutex_);
        while (!isAbandoned_) {
            wake_.wait(lock, [this] { return job_ || isClosing_; });
            if (!job_) return;
            lock.unlock();
            // What the job owns goes before it counts as ended.
            std::exchange(job_, nullptr)(*this);
            lock.lock();
            isDone_ = true;
            done_.notify_one();
        }
        AbandonedJobs::ofProcess().remove();
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    std::function<void(JobLimit&)> job_;
    std::chrono::nanoseconds limit_{};
    Clock::time_point deadline_;
    bool isDone_ = false;
    bool isClosing_ = false;
    std::atomic<bool> isAbandoned_ = false;
};

TimeLimitedWorker::~TimeLimitedWorker() {
    if (lane_) lane_->finish();
}

bool TimeLimitedWorker::run(std::chrono::nanoseconds limit, std::function<void(JobLimit&)> job) {
    if (!lane_) lane_ = Lane::start();
    const bool hasEnded = lane_->run(limit, std::move(job));
    if (!hasEnded) lane_.reset();
    return hasEnded;
}

bool AbandonableFileLayer::mayGoOn() const noexcept {
    if (!limit_.isAbandoned()) return true;
    errno = ECANCELED;
    return false;
}

int AbandonableFileLayer::open(const std::string& path, int flags, mode_t mode) {
    return mayGoOn() ? files_.open(path, flags, mode) : -1;
}

ssize_t AbandonableFileLayer::write(int descriptor, const void* bytes, std::size_t count) {
    return mayGoOn() ? files_.write(descriptor, bytes, count) : -1;
}

ssize_t AbandonableFileLayer::read(int descriptor, void* bytes, std::size_t count) {
    return mayGoOn() ? files_.read(descriptor, bytes, count) : -1;
}

int AbandonableFileLayer::close(int descriptor) {
    return files_.close(descriptor);
}

int AbandonableFileLayer::sync(int descriptor) {
    return mayGoOn() ? files_.sync(descriptor) : -1;
}

int AbandonableFileLayer::fullSync(int descriptor) {
    return mayGoOn() ? files_.fullSync(descriptor) : -1;
}

void AbandonableFileLayer::bypassCache(int descriptor) {
    if (mayGoOn()) files_.bypassCache(descriptor);
}

int AbandonableFileLayer::stat(const std::string& path, struct stat& result) {
    return mayGoOn() ? files_.stat(path, result) : -1;
}

int AbandonableFileLayer::makeDirectory(const std::string& path, mode_t mode) {
    return mayGoOn() ? files_.makeDirectory(path, mode) : -1;
}

int AbandonableFileLayer::rename(const std::string& from, const std::string& to) {
    return mayGoOn() ? files_.rename(from, to) : -1;
}

int AbandonableFileLayer::unlink(const std::string& path) {
    return mayGoOn() ? files_.unlink(path) : -1;
}

void waitForAbandonedJobs() {
    AbandonedJobs& jobs = AbandonedJobs::ofProcess();
    std::unique_lock lock(jobs.mutex);
    jobs.changed.wait(lock, [&] { return jobs.count == 0; });
}

} // namespace corvane::archive
