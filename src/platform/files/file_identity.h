// Which file or folder a name or a descriptor leads to, whatever it is called.
#pragma once

#include <compare>
#include <cstdint>

#include <sys/stat.h>

namespace corvane::platform {

// Only compared, and only while the system runs: numbers of files that are gone are used again.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    static FileIdentity of(const struct stat& status) noexcept {
        return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
    }

    friend auto operator<=>(const FileIdentity&, const FileIdentity&) = default;
};

} // namespace corvane::platform
