// What Core Foundation tells about the volume of a path, by its C interface. May block; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/macos/mount_values.h"

namespace corvane::platform::macos {

VolumeProperties volumeProperties(const std::string& mountPoint);

// Bytes free for what the user asked to keep, including what the system would clear away for it; absent where
// the volume doesn't tell, and 0 where it doesn't know the difference.
std::optional<std::int64_t> importantFreeBytes(const std::string& existingPath);

} // namespace corvane::platform::macos
