// SIGINT and SIGTERM as something to read, for programs that bring their work in order before they end. The
// second one, unless it comes together with the first, ends the process at once, with the status of an
// interrupted program: whatever is half written then is what a kill leaves, which the next start removes.
#pragma once

#include <chrono>
#include <optional>

namespace corvane::platform {

// The exit status of a process that a signal asked to end.
inline constexpr int interruptedStatus = 130;

// From here on the first signal doesn't end the process. Returns a descriptor that becomes readable when it
// came; it stays open for the whole program run. With a `patience` the process ends by itself when it is
// still there so long after the first signal, also where every thread hangs. Call it once, with full seconds.
// Throws std::system_error.
int catchQuitSignals(std::optional<std::chrono::seconds> patience = {});

// Empties the descriptor.
void drainQuitSignals(int descriptor) noexcept;

// A signal came.
bool wasAskedToQuit() noexcept;

} // namespace corvane::platform
