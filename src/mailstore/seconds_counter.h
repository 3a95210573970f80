// A stop-watch for the parts of a scan. One thread.
#pragma once

#include <chrono>

namespace corvane {

// Adds the seconds between its construction and its destruction to a sum.
class SecondsCounter {
  public:
    explicit SecondsCounter(double& total)
      : total_(total) {}

    SecondsCounter(const SecondsCounter&) = delete;
    SecondsCounter& operator=(const SecondsCounter&) = delete;

    ~SecondsCounter() { total_ += std::chrono::duration<double>(Clock::now() - start_).count(); }

  private:
    using Clock = std::chrono::steady_clock;

    double& total_;
    Clock::time_point start_ = Clock::now();
};

} // namespace corvane
