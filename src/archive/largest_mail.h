// How large a mail may be that is read whole.
#pragma once

#include <cstdint>

namespace corvane::archive {

// Real mail never comes near; a lying sparse file must neither take all memory nor be read for hours.
inline constexpr std::int64_t largestMailBytes = std::int64_t{4} << 30;

} // namespace corvane::archive
