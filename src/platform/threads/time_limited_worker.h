// Runs blocking jobs one at a time on a thread of its own and stops waiting for one that hangs. A call into a
// dead disk or cloud folder can't be cancelled: such a job is abandoned with its thread, which goes on until
// the system gives up, and the next job gets a fresh one. A job therefore owns all that it touches, and
// changes nothing any more once it is abandoned (AbandonableFileLayer).
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

#include "platform/files/layers/forwarding_file_layer.h"

namespace corvane::platform {

// How long a step may take at a place that users name, such as a disk or a cloud folder.
inline constexpr std::chrono::seconds placeLimit{25};

// What a job and the one who waits for it share.
class JobLimit {
  public:
    virtual ~JobLimit() = default;

    // Gives the job its whole time again: called at the beginning of each step.
    virtual void restart() = 0;

    [[nodiscard]] virtual bool isAbandoned() const noexcept = 0;
};

// Used by one thread at a time.
class TimeLimitedWorker {
  public:
    TimeLimitedWorker() = default;
    TimeLimitedWorker(const TimeLimitedWorker&) = delete;
    TimeLimitedWorker& operator=(const TimeLimitedWorker&) = delete;
    ~TimeLimitedWorker();

    // False when a step of the job took longer than `limit`, and it was abandoned. Once a stop is requested,
    // no step has longer than `grace`. Jobs don't throw: they tell their outcome through what they share with
    // the caller.
    bool run(std::chrono::nanoseconds limit, std::function<void(JobLimit&)> job,
             const std::stop_token& stop = {},
             std::chrono::nanoseconds grace = std::chrono::nanoseconds::zero());

  private:
    class Lane;

    std::shared_ptr<Lane> lane_;
};

// The file layer of one job: once that is abandoned, everything that could change a file fails with
// ECANCELED. What hung may come back after another run has written the same file and proved it.
class AbandonableFileLayer final : public ForwardingFileLayer {
  public:
    // Both must outlive this layer.
    AbandonableFileLayer(FileLayer& files, const JobLimit& limit)
      : ForwardingFileLayer(files)
      , limit_(limit) {}

  private:
    [[nodiscard]] bool permits() noexcept override;

    const JobLimit& limit_;
};

// Returns when no abandoned job is left in the process. What such jobs use by reference, such as the file
// layer of a test, may go only after that.
void waitForAbandonedJobs();

} // namespace corvane::platform
