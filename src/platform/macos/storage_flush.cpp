#include "platform/files/writing/storage_flush.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::platform {

namespace {

// What the file systems without the strong flush (network, FUSE, some drivers of FAT) answer.
bool isUnsupported(int error) noexcept {
    return error == ENOTSUP || error == EOPNOTSUPP || error == EINVAL || error == ENOTTY || error == ENODEV ||
           error == ENOSYS;
}

} // namespace

// fsync(2) ends in the device's own cache here; F_FULLFSYNC empties that as well.
int flushToMedium(int descriptor) noexcept {
    int result = 0;
    do {
        result = ::fcntl(descriptor, F_FULLFSYNC);
    } while (result == -1 && errno == EINTR);
    if (result == -1 && isUnsupported(errno)) return ::fsync(descriptor);
    return result == -1 ? -1 : 0;
}

// F_NOCACHE alone keeps new pages out of the cache, but is still served with those of the write. They are
// clean after its fsync, and an invalidating msync(2) drops them.
void dropCachedPages(int descriptor) noexcept {
    ::fcntl(descriptor, F_NOCACHE, 1);
    struct stat status{};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) return;
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const pages = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (pages == MAP_FAILED) return;
    ::msync(pages, size, MS_SYNC | MS_INVALIDATE);
    ::munmap(pages, size);
}

std::optional<bool> holdsCachedPages(int descriptor) noexcept {
    struct stat status{};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) return {};
    // The beginning speaks for the whole.
    const auto size = static_cast<std::size_t>(std::min<off_t>(status.st_size, off_t{1} << 20));
    void* const pages = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (pages == MAP_FAILED) return {};
    std::array<char, 512> states{};
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t pageCount = std::min(states.size(), (size + pageSize - 1) / pageSize);
    const bool isTold = ::mincore(pages, std::min(size, pageCount * pageSize), states.data()) == 0;
    ::munmap(pages, size);
    if (!isTold) return {};
    return std::any_of(states.begin(), states.begin() + static_cast<std::ptrdiff_t>(pageCount),
                       [](auto state) { return (state & MINCORE_INCORE) != 0; });
}

} // namespace corvane::platform
