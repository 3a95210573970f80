#include "platform/files/file_look.h"

#include <cerrno>

#include "platform/files/nameable_path.h"

namespace corvane::platform {

namespace {

std::int64_t nanoseconds(const struct timespec& time) noexcept {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace

FileLook lookAtFile(const std::string& path) noexcept {
    struct stat status{};
    if (!isNameable(path) || ::stat(path.c_str(), &status) != 0) {
        const bool cannotExist = errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG;
        return {.presence = cannotExist ? FileLook::Presence::absent : FileLook::Presence::unknown};
    }
    return {.presence = FileLook::Presence::there,
            .sizeBytes = status.st_size,
            .modifiedNanoseconds = modifiedNanoseconds(status),
            .changedNanoseconds = changedNanoseconds(status),
            .device = static_cast<std::uint64_t>(status.st_dev),
            .inode = static_cast<std::uint64_t>(status.st_ino)};
}

std::int64_t modifiedNanoseconds(const struct stat& status) noexcept {
#if defined(__APPLE__)
    return nanoseconds(status.st_mtimespec);
#else
    return nanoseconds(status.st_mtim);
#endif
}

std::int64_t changedNanoseconds(const struct stat& status) noexcept {
#if defined(__APPLE__)
    return nanoseconds(status.st_ctimespec);
#else
    return nanoseconds(status.st_ctim);
#endif
}

} // namespace corvane::platform
