// Runs the small window of a start that found its home taken by one that doesn't answer. Main thread.
#pragma once

#include <string>

#include "app/single_instance.h"

namespace corvane {

enum class BlockedEnd { becameFirst, handedOver, givenUp };

// Returns when the user gives up, or a retry has found the other one gone or answering.
BlockedEnd runBlockedWindow(SingleInstance& instance, const std::string& address, int quitSignals);

} // namespace corvane
