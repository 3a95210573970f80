#include "platform/files/writing/file_claim.h"

#include <cerrno>

#include <sys/file.h>
#include <sys/stat.h>

namespace corvane::platform {

FileClaim claimFile(int descriptor) noexcept {
    int result = 0;
    do {
        result = ::flock(descriptor, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result != 0) return errno == EWOULDBLOCK ? FileClaim::refused : FileClaim::unsupported;
    struct stat status{};
    // Between making a file and claiming it, it may have been taken for a remnant.
    if (::fstat(descriptor, &status) == 0 && status.st_nlink == 0) return FileClaim::refused;
    return FileClaim::held;
}

} // namespace corvane::platform
