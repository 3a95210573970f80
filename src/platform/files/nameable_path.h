// The check that every path passes on its way to a system call.
#pragma once

#include <cerrno>
#include <string>

namespace corvane::platform {

// A NUL would cut the name short, and the call would reach another file. False and EINVAL then.
inline bool isNameable(const std::string& path) noexcept {
    if (path.find('\0') == std::string::npos) return true;
    errno = EINVAL;
    return false;
}

} // namespace corvane::platform
