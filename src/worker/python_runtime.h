// Which Python runs the program's own scripts. Touches the disk: background work only.
#pragma once

#include <optional>
#include <string>

#include "platform/platform.h"

namespace corvane {

// The first that can be executed: the one that CORVANE_PYTHON names, one that came with the program, those of
// the system. Absent where there is none.
std::optional<std::string> findPythonRuntime(const platform::Platform& platform);

} // namespace corvane
