// Talking through pipes to a process that may hang, die, or never listen: each call ends at its deadline.
// Waiting is woken by the pipe, never by sleeping in steps. One thread at a time for one pipe.
#pragma once

#include <chrono>
#include <stop_token>
#include <string>
#include <string_view>

namespace corvane::platform {

enum class PipeOutcome {
    done,
    ended, // the other side is gone
    timedOut,
    stopped // a stop was requested
};

using PipeDeadline = std::chrono::steady_clock::time_point;

// Sends all bytes. The descriptor becomes non-blocking. A reader that goes is `ended`, never SIGPIPE. Throws
// std::system_error for what isn't one of the outcomes.
PipeOutcome sendAll(int descriptor, std::string_view bytes, PipeDeadline deadline,
                    const std::stop_token& stop = {});

// Appends what has arrived, at least one byte and at most 65536; waits for it when none has arrived yet.
// Throws as above.
PipeOutcome receiveSome(int descriptor, std::string& received, PipeDeadline deadline,
                        const std::stop_token& stop = {});

} // namespace corvane::platform
