// The programs of a Mac that open and show files, and the shell that limits others, as they are started.
// Plain values, built and tested on every system. Thread-safe.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/processes/child_process.h"
#include "platform/processes/program_command.h"

namespace corvane::platform::macos {

// Absent for what is neither an absolute path nor an address with a scheme: "open" would take a dash for an
// option and anything else for a path below its own folder.
std::optional<ProgramCommand> openCommand(std::string_view target);

// Absent for a path that isn't absolute.
std::optional<ProgramCommand> revealCommand(std::string_view path);

// The page of the system's settings where the user grants full disk access.
ProgramCommand privacySettingsCommand();

// Starts the same program by a shell that first limits the size of the files that it may write, for which
// posix_spawn(2) has no attribute. The limit is rounded up to the shell's blocks. Needs a limit.
ChildProcessOptions withLimitByShell(const ChildProcessOptions& options);

} // namespace corvane::platform::macos
