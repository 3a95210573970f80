// The processor's time of the thread that asks, and how many such times are told.
#pragma once

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace corvane {

inline double threadMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// A JSON object: count, mean, two percentiles and the longest. `times` isn't empty.
inline std::string summaryOf(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    const auto at = [&](double part) {
        return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
    };
    double sum = 0;
    for (const double time : times) sum += time;
    return fmt::format(R"({{"count": {}, "mean": {:.2f}, "p50": {:.2f}, "p95": {:.2f}, "max": {:.2f}}})",
                       times.size(), sum / static_cast<double>(times.size()), at(0.5), at(0.95),
                       times.back());
}

} // namespace corvane
