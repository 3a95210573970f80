#include "platform/processes/process_limits.h"

#include <sys/resource.h>

namespace corvane::platform {

namespace {

template <class Resource>
bool limit(Resource resource, std::int64_t most) noexcept {
    const auto value = static_cast<rlim_t>(most);
    const rlimit limits{.rlim_cur = value, .rlim_max = value};
    return ::setrlimit(resource, &limits) == 0;
}

} // namespace

bool limitThisProcess(const ProcessLimits& limits) noexcept {
    const bool isMemoryLimited = limitMemory(limits.memoryBytes);
    const bool isTimeLimited = limit(RLIMIT_CPU, limits.processorTime.count());
    const bool isWritingOff = limit(RLIMIT_FSIZE, 0) && limit(RLIMIT_CORE, 0);
    return isMemoryLimited && isTimeLimited && isWritingOff;
}

} // namespace corvane::platform
