#include "platform/macos/mount_list.h"

#include <cerrno>
#include <cstdint>

#include <fmt/format.h>
#include <sys/mount.h>
#include <sys/param.h>

namespace corvane::platform::macos {

namespace {

static_assert(readOnlyMount == MNT_RDONLY && localMount == MNT_LOCAL && unbrowsableMount == MNT_DONTBROWSE);

Mount valuesOf(const struct statfs& status) {
    return {.mountPoint = status.f_mntonname,
            .fileSystemType = status.f_fstypename,
            .source = status.f_mntfromname,
            .id = fmt::format("{}:{}", status.f_fsid.val[0], status.f_fsid.val[1]),
            .flags = status.f_flags};
}

std::optional<struct statfs> statusOf(const std::string& path) {
    struct statfs status{};
    int result = 0;
    do {
        result = ::statfs(path.c_str(), &status);
    } while (result != 0 && errno == EINTR);
    if (result != 0) return std::nullopt;
    return status;
}

} // namespace

std::optional<std::vector<Mount>> mountedFileSystems() {
    int known = ::getfsstat(nullptr, 0, MNT_NOWAIT);
    std::vector<struct statfs> rows;
    // A full answer may be a cut one: something was mounted between the two calls.
    while (known >= static_cast<int>(rows.size())) {
        rows.resize(static_cast<std::size_t>(known) + 8);
        known = ::getfsstat(rows.data(), static_cast<int>(rows.size() * sizeof(struct statfs)), MNT_NOWAIT);
    }
    if (known < 0) return std::nullopt;
    rows.resize(static_cast<std::size_t>(known));
    std::vector<Mount> mounts;
    mounts.reserve(rows.size());
    for (const auto& row : rows) mounts.push_back(valuesOf(row));
    return mounts;
}

std::optional<Mount> mountOf(const std::string& existingPath) {
    const auto status = statusOf(existingPath);
    if (!status) return std::nullopt;
    return valuesOf(*status);
}

// Not statvfs(3): its counts of blocks have 32 bits here.
std::optional<std::int64_t> plainFreeBytes(const std::string& existingPath) {
    const auto status = statusOf(existingPath);
    std::int64_t bytes = 0;
    if (!status) return std::nullopt;
    if (__builtin_mul_overflow(status->f_bavail, status->f_bsize, &bytes)) return INT64_MAX;
    return bytes;
}

} // namespace corvane::platform::macos
