// Limits that a process puts on itself before it reads what strangers wrote. They can't be lifted again.
#pragma once

#include <chrono>
#include <cstdint>

namespace corvane::platform {

struct ProcessLimits {
    std::int64_t memoryBytes = 0; // as limitMemory() has it
    std::chrono::seconds processorTime{};
};

// A process beyond its time is ended. It writes no file any more and leaves no image of its memory behind.
// False where the system refused any of that.
bool limitThisProcess(const ProcessLimits& limits) noexcept;

// By system. Linux gives out no memory above so many bytes of addresses, those of libraries among them; on a
// Mac a process that holds more is ended.
bool limitMemory(std::int64_t bytes) noexcept;

} // namespace corvane::platform
