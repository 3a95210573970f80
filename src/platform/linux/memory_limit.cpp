#include <sys/resource.h>

#include "platform/processes/process_limits.h"

namespace corvane::platform {

bool limitMemory(std::int64_t bytes) noexcept {
    const auto most = static_cast<rlim_t>(bytes);
    const rlimit limits{.rlim_cur = most, .rlim_max = most};
    return ::setrlimit(RLIMIT_AS, &limits) == 0;
}

} // namespace corvane::platform
