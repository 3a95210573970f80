// Questions about this user's places that every POSIX system answers alike. Thread-safe.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane::platform {

// Empty when the variable isn't set.
std::string environmentText(const char* name);

// The home of this process's user by the system's list of users, else by HOME; without a trailing slash.
std::string homeOfUser();

// The path itself or its nearest parent that is there. Absent when the file system doesn't answer, which is
// not the same as "isn't there".
std::optional<std::string> nearestExisting(std::string_view path);

} // namespace corvane::platform
