// What an archived mail adds to sums of sizes. Pure.
#pragma once

#include <algorithm>
#include <cstdint>

#include "records/archived/archive_records.h"

namespace corvane {

// The size that the record names, within what mail can have: an index is from outside, and no sum of its
// sizes may pass what a number holds.
inline std::int64_t countedBytes(const ArchivedEmailRecord& record) noexcept {
    constexpr std::int64_t most = std::int64_t{1} << 40;
    return std::clamp<std::int64_t>(record.sizeBytes, 0, most);
}

} // namespace corvane
