// One look at a file: whether it is there, its size and its times. Follows links, never opens. Thread-safe.
#pragma once

#include <cstdint>
#include <string>

#include <sys/stat.h>

namespace corvane::platform {

struct FileLook {
    enum class Presence {
        there,   // of whatever kind
        absent,  // the folder answered, and there is no such name
        unknown, // the look failed for another reason
    };

    Presence presence = Presence::unknown;
    // Of a file that is there, else 0.
    std::int64_t sizeBytes = 0;
    std::int64_t modifiedNanoseconds = 0; // since 1970
    std::int64_t changedNanoseconds = 0;  // the same of the file's last change of any kind
    std::uint64_t device = 0;
    std::uint64_t inode = 0; // files of near numbers tend to lie near each other on the disk
};

// A file that was last changed less long ago than this may change once more and keep its time: some disks
// tell times to two seconds.
inline constexpr std::int64_t youngNanoseconds = 3'000'000'000;

FileLook lookAtFile(const std::string& path) noexcept;

// Since 1970.
std::int64_t modifiedNanoseconds(const struct stat& status) noexcept;

// Since 1970, of the last change of content, name or mode. The system keeps it: no program sets it back.
std::int64_t changedNanoseconds(const struct stat& status) noexcept;

} // namespace corvane::platform
