// The processor's time of this process, or of all that it started and waited for.
#pragma once

#include <sys/resource.h>
#include <sys/time.h>

namespace corvane {

// Seconds, in the kernel too. `who` as for getrusage: RUSAGE_SELF or RUSAGE_CHILDREN.
inline double processorSeconds(int who) {
    rusage used{};
    getrusage(who, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

} // namespace corvane
