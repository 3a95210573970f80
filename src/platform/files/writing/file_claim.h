// How a temporary file that is in use is told from one that a killed process left: whoever makes it holds a
// lock on it, which ends with its process. Thread-safe.
#pragma once

namespace corvane::platform {

enum class FileClaim {
    held,        // until the last copy of the descriptor is closed
    refused,     // somebody else has it, or has just removed it
    unsupported, // the file system knows no locks
};

// A file that was just made can be refused only while another start removes what was left: a fresh one is
// then made, up to so many times. Without a claim it is used all the same.
inline constexpr int claimTries = 3;

// Never waits. For a file or a folder.
FileClaim claimFile(int descriptor) noexcept;

} // namespace corvane::platform
