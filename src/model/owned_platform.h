// The platform of a run of the program. It goes with its owner, unless a job that was given up may still ask
// it: then it stays as long as the process.
#pragma once

#include <memory>
#include <string>

#include "platform/platform.h"

namespace corvane {

struct PlatformRetirement {
    void operator()(platform::Platform* retired) const noexcept;
};

using OwnedPlatform = std::unique_ptr<platform::Platform, PlatformRetirement>;

// `home` as for makePlatform().
OwnedPlatform makeOwnedPlatform(const std::string& home);

} // namespace corvane
