#include "platform/files/storage_flush.h"

#include <fcntl.h>
#include <unistd.h>

namespace corvane::platform {

// fsync waits for the device's own cache too (a flush or FUA request), so there is nothing stronger for one
// file. syncfs would add everything that other programs have dirty on a slow stick, and proves no more.
int flushToMedium(int descriptor) noexcept {
    return ::fsync(descriptor);
}

// O_DIRECT is no alternative: it needs aligned buffers, and tmpfs, FUSE and several network file systems
// refuse it. Only clean pages can be dropped; sync_file_range writes out what is still dirty without the
// journal commit and the device flush that a second fsync would cost, and finds nothing to do after the first
// one.
void dropCachedPages(int descriptor) noexcept {
    ::sync_file_range(descriptor, 0, 0,
                      SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
    ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
}

} // namespace corvane::platform
