// The mounts of this system as values. Thread-safe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/macos/mount_values.h"

namespace corvane::platform::macos {

// From what the system remembers, so a server that doesn't answer can't hold it up. Absent when the system
// doesn't tell.
std::optional<std::vector<Mount>> mountedFileSystems();

// That of an existing path; absent when it can't be told. May block.
std::optional<Mount> mountOf(const std::string& existingPath);

// Bytes that this user may still write at an existing path. May block.
std::optional<std::int64_t> plainFreeBytes(const std::string& existingPath);

} // namespace corvane::platform::macos
