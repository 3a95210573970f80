// How much one call moves. Constants only.
#pragma once

#include <cstddef>

namespace corvane::platform {

// The most bytes that one read(2) or write(2) is asked for: macOS refuses more than INT_MAX, where other
// systems move a part.
inline constexpr std::size_t mostBytesPerCall = std::size_t{1} << 30;

} // namespace corvane::platform
