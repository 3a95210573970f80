// Watches the mounts of this system and tells of browsable volumes that come and go.
#pragma once

#include <functional>
#include <memory>

#include "platform/platform.h"

namespace corvane::platform::macos {

// `handler` runs on a thread of its own, which ends with the subscription; the subscription must not be ended
// by the handler itself. Throws std::system_error.
std::unique_ptr<MountSubscription> watchMounts(std::function<void(MountEvent)> handler);

} // namespace corvane::platform::macos
