// This system keeps to no limit of addresses: a thread looks at what the process holds, and ends it above the
// limit.
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <system_error>
#include <thread>

#include <mach/mach.h>
#include <mach/task_info.h>
#include <unistd.h>

#include "platform/processes/process_limits.h"

namespace corvane::platform {

namespace {

// What a decoder writes in that time is what it can hold above the limit: some ten megabytes.
constexpr std::chrono::milliseconds lookInterval{5};

std::optional<std::int64_t> heldBytes() noexcept {
    task_vm_info_data_t info{};
    mach_msg_type_number_t count = TASK_VM_INFO_COUNT;
    const kern_return_t outcome =
        ::task_info(mach_task_self(), TASK_VM_INFO, reinterpret_cast<task_info_t>(&info), &count);
    if (outcome != KERN_SUCCESS) return std::nullopt;
    return static_cast<std::int64_t>(info.phys_footprint);
}

[[noreturn]] void endAbove(std::int64_t bytes) noexcept {
    for (;; std::this_thread::sleep_for(lookInterval)) {
        if (heldBytes().value_or(0) > bytes) ::_exit(EXIT_FAILURE);
    }
}

} // namespace

bool limitMemory(std::int64_t bytes) noexcept {
    if (!heldBytes()) return false;
    try {
        std::thread(endAbove, bytes).detach();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

} // namespace corvane::platform
