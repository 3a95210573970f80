#include "platform/files/writing/storage_flush.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
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

std::optional<bool> holdsCachedPages(int descriptor) noexcept {
    struct stat status{};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) return {};
    // The beginning speaks for the whole.
    const auto size = static_cast<std::size_t>(std::min<off_t>(status.st_size, off_t{1} << 20));
    void* const pages = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (pages == MAP_FAILED) return {};
    std::array<unsigned char, 512> states{};
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t pageCount = std::min(states.size(), (size + pageSize - 1) / pageSize);
    const bool isTold = ::mincore(pages, std::min(size, pageCount * pageSize), states.data()) == 0;
    ::munmap(pages, size);
    if (!isTold) return {};
    return std::any_of(states.begin(), states.begin() + static_cast<std::ptrdiff_t>(pageCount),
                       [](auto state) { return (state & 1) != 0; });
}

} // namespace corvane::platform
