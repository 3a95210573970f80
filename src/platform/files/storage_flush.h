// The two storage operations that every system spells differently. Results as in file_layer.h.
#pragma once

namespace corvane::platform {

int flushToMedium(int descriptor) noexcept;
void dropCachedPages(int descriptor) noexcept;

} // namespace corvane::platform
