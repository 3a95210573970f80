// A stop-watch for the parts of a scan. One thread.
#pragma once

#include "platform/stop_watch.h"

namespace corvane {

// Adds the seconds between its construction and its destruction to a sum.
class SecondsCounter {
  public:
    explicit SecondsCounter(double& total)
      : total_(total) {}

    SecondsCounter(const SecondsCounter&) = delete;
    SecondsCounter& operator=(const SecondsCounter&) = delete;

    ~SecondsCounter() { total_ += watch_.seconds(); }

  private:
    double& total_;
    platform::StopWatch watch_;
};

} // namespace corvane
