// The programs by which a FreeDesktop session opens and shows files, as they are started. Plain values.
#pragma once

#include <string>
#include <string_view>

#include "platform/processes/program_command.h"

namespace corvane::platform {

inline constexpr const char* desktopOpener = "/usr/bin/xdg-open";

// In a session of its own, which outlives this program: the opener may become the program that shows the
// file. Ends at once, and doesn't tell whether the opener found one.
ProgramCommand openCommand(const std::string& target);

// Asks the file manager on the session's bus to show the file, marked, in its folder.
ProgramCommand revealCommand(std::string_view path);

} // namespace corvane::platform
