// How often a job of many files reports how far it is: not more than ten times a second, since each report is
// a step of the main thread. Used by one thread.
#pragma once

#include <chrono>

namespace corvane {

class ProgressPace {
  public:
    // Whether this state is to be reported now. The last one always is.
    template <class Count>
    [[nodiscard]] bool isDue(Count done, Count all) {
        const auto now = std::chrono::steady_clock::now();
        if (now < next_ && done != all) return false;
        next_ = now + std::chrono::milliseconds(100);
        return true;
    }

  private:
    std::chrono::steady_clock::time_point next_;
};

} // namespace corvane
