// Plain lines for whoever watches the program run. They go to standard error, so that standard output belongs
// to a command's own answer. Thread-safe: a line is never torn.
#pragma once

#include <string_view>

namespace corvane {

void consoleLine(std::string_view line);

// The operating system's log, for failures of our own logs.
void systemLogLine(std::string_view line);

} // namespace corvane
