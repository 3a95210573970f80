#include "model/owned_platform.h"

#include "platform/threads/abandoned_jobs.h"

namespace corvane {

void PlatformRetirement::operator()(platform::Platform* retired) const noexcept {
    if (!platform::hasAbandonedJobs()) delete retired;
}

OwnedPlatform makeOwnedPlatform(const std::string& home) {
    return OwnedPlatform(platform::makePlatform(home).release());
}

} // namespace corvane
