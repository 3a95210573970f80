#include "platform/processes/desktop_program.h"

#include <system_error>

#include "platform/processes/child_process.h"

namespace corvane::platform {

bool runBriefly(const ProgramCommand& command, std::chrono::milliseconds patience) {
    try {
        ChildProcess program({.executable = command.executable, .arguments = command.arguments});
        const auto status = program.waitUntil(std::chrono::steady_clock::now() + patience);
        if (!status) program.terminateAndWait();
        return status == 0;
    } catch (const std::system_error&) {
        return false;
    }
}

} // namespace corvane::platform
