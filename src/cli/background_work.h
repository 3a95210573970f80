// Work of a command that needs no model, on a thread of its own while the main thread listens for signals.
#pragma once

#include <functional>
#include <stop_token>

namespace corvane::cli {

// Returns when the work has ended; at SIGINT and SIGTERM its stop is requested. Passes on what it throws.
// Throws Interrupted where a signal came, whatever the work made of it.
void runInBackground(const std::function<void(const std::stop_token&)>& work);

} // namespace corvane::cli
