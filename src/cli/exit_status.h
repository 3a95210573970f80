// The exit statuses of corvane-cli.
#pragma once

#include "platform/processes/quit_signals.h"

namespace corvane::cli {

enum ExitStatus : int {
    done = 0,
    failed = 1,
    wrongUsage = 2,
    doneWithIssues = 3, // done, but not for all: failures or warnings
    interrupted = platform::interruptedStatus,
};

} // namespace corvane::cli
