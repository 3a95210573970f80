// Watches the mount table of this process and tells of browsable volumes that come and go.
#pragma once

#include <functional>
#include <memory>

#include "platform/platform.h"

namespace corvane::platform {

// `handler` runs on a thread of its own, which ends with the subscription; the subscription must not be ended
// by the handler itself. Throws std::system_error when the table can't be watched.
std::unique_ptr<MountSubscription> watchMounts(std::function<void(MountEvent)> handler);

} // namespace corvane::platform
