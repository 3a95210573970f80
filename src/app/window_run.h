// One run of the window over one home, from its start-up work to the end of everything it started. Main
// thread.
#pragma once

#include <optional>
#include <string>

#include "screens/controls/theme/appearance.h"

namespace corvane {

struct WindowOptions {
    std::string home; // empty for the user's own
    std::string address;
    int quitSignals = -1; // readable when the program is asked to end
};

struct WindowOutcome {
    int exitStatus = 0;
    std::optional<std::string> reopenHome; // run again, over this home
};

WindowOutcome runWindow(const WindowOptions& options);

} // namespace corvane
