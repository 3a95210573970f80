// Measures how long something takes, from its own making on. Copies go on with the same start.
#pragma once

#include <chrono>

namespace corvane::platform {

class StopWatch {
  public:
    using Seconds = std::chrono::duration<double>;

    [[nodiscard]] Seconds elapsed() const { return Clock::now() - start_; }

    // The same as a plain number of seconds.
    [[nodiscard]] double seconds() const { return elapsed().count(); }

  private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point start_ = Clock::now();
};

} // namespace corvane::platform
