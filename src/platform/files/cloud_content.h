// Whether a file that is there holds its content. Thread-safe.
#pragma once

#include <sys/stat.h>

namespace corvane::platform {

// A cloud provider has the content: any open would bring it, and wait for that. What goes through a whole
// archive looks first, or it would fill the disk with all that was moved to the cloud to free it. False where
// the system can't tell.
inline bool isOnlyInCloud([[maybe_unused]] const struct stat& status) noexcept {
#if defined(__APPLE__)
    return (status.st_flags & SF_DATALESS) != 0;
#else
    return false;
#endif
}

} // namespace corvane::platform
