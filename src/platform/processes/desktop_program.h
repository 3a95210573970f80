// Runs the small programs by which a desktop opens and shows things. Any thread; blocks.
#pragma once

#include <chrono>

#include "platform/processes/program_command.h"

namespace corvane::platform {

// True when the program ended well within the patience. One that can't be started, fails, or has to be ended
// because it takes longer is false. What it writes is dropped.
bool runBriefly(const ProgramCommand& command, std::chrono::milliseconds patience);

} // namespace corvane::platform
