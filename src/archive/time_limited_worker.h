// Runs jobs that may hang in the system, one at a time, and waits for each no longer than a limit. A job that
// passes the limit can't be stopped: its thread is left to it, and the next job gets a fresh one. So a job
// must own what it uses, or use what lives as long as the process.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace corvane::archive {

class TimeLimitedWorker {
  public:
    explicit TimeLimitedWorker(std::chrono::milliseconds limit)
      : limit_(limit) {}

    TimeLimitedWorker(const TimeLimitedWorker&) = delete;
    TimeLimitedWorker& operator=(const TimeLimitedWorker&) = delete;
    ~TimeLimitedWorker();

    // False when the limit passed first. The job must not throw.
    bool run(std::function<void()> job);

  private:
    struct Shared;

    void dismiss();

    std::chrono::milliseconds limit_;
    std::shared_ptr<Shared> thread_; // null without one
};

} // namespace corvane::archive
