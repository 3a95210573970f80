// SIGINT and SIGTERM as something to read, for programs that bring their work in order before they end.
#pragma once

namespace corvane::platform {

// From here on both signals are noted instead of ending the process. Returns a descriptor that becomes
// readable when one came; it stays open for the whole program run. Call it once. Throws std::system_error.
int noteQuitSignals();

// Empties the descriptor, so that the next signal shows again.
void takeQuitSignals(int descriptor) noexcept;

// One of them came.
bool wasAskedToQuit() noexcept;

} // namespace corvane::platform
