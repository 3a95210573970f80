// Limits that a process puts on itself before it reads what strangers wrote. They can't be lifted again.
#pragma once

#include <chrono>
#include <cstdint>

namespace corvane::platform {

struct ProcessLimits {
    std::int64_t memoryBytes = 0; // of addresses, libraries among them; not every system keeps to it
    std::chrono::seconds processorTime{};
};

// A process beyond its time is ended, memory beyond the limit isn't given out. It writes no file any more and
// leaves no image of its memory behind. False where the system refused any of that.
bool limitThisProcess(const ProcessLimits& limits) noexcept;

} // namespace corvane::platform
