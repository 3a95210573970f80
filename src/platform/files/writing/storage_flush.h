// The storage operations that every system spells differently. Results as in file_layer.h.
#pragma once

#include <optional>

namespace corvane::platform {

int flushToMedium(int descriptor) noexcept;
void dropCachedPages(int descriptor) noexcept;

// Whether the cache holds any of a regular file, so that a read may not reach the storage: after
// dropCachedPages() that of a file system that keeps everything in memory. Absent where the system doesn't
// tell, and for an empty file.
std::optional<bool> holdsCachedPages(int descriptor) noexcept;

} // namespace corvane::platform
