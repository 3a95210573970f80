// Plain lines on standard error, so that standard output belongs to a command's own answer. Thread-safe: a
// line is never torn, and hidden characters are shown by signs, so that no text of a mail can forge a line or
// act on the terminal.
#pragma once

#include <string_view>

namespace corvane {

// For the user: what failed, what is going on.
void messageLine(std::string_view line);

// For developers, "[Accounts] ...". Such lines name addresses and places, and standard error may end in the
// mail of a scheduled job or in the system's log: they are dropped until showConsoleLines() is called.
void consoleLine(std::string_view line);

void showConsoleLines() noexcept;

// The operating system's log, for failures of our own logs.
void systemLogLine(std::string_view line);

} // namespace corvane
