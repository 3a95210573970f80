// How fast a run goes and how long it still takes, from its reports of the last ten seconds. A value, for one
// run.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>

#include <QString>

namespace corvane {

class RunPace {
  public:
    using Moment = std::chrono::steady_clock::time_point;

    void start(Moment moment);

    // Reports come in the order of time; a smaller number than before begins a new count.
    void report(std::int64_t completed, Moment moment);

    [[nodiscard]] std::chrono::seconds elapsed(Moment now) const;

    // Messages a second; absent before the second report, and while no message is done.
    [[nodiscard]] std::optional<double> rate() const;

    // Absent in the first three seconds, and while no message is done.
    [[nodiscard]] std::optional<std::chrono::seconds> timeLeft(std::int64_t total, Moment now) const;

  private:
    struct Report {
        Moment moment;
        std::int64_t completed = 0;
    };

    Moment start_{};
    std::deque<Report> reports_;
};

namespace screens {

// "38 封 / 秒"; by minutes where that is less than one a second.
QString shownRate(std::optional<double> rate);

// "约 12 秒", "约 3 分钟", "约 2 小时".
QString shownTimeLeft(std::optional<std::chrono::seconds> left);

} // namespace screens

} // namespace corvane
