// Finds archives that nobody told the program about, for instance after a reinstall.
#pragma once

#include <stop_token>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace corvane {

// The archives directly in the cloud folders and on the external volumes of this machine, and those one level
// below: roots in the order in which they were found. Touches folders that may hang: background tasks only.
std::vector<std::string> discoverArchiveRoots(const platform::Platform& platform,
                                              const std::stop_token& stop);

} // namespace corvane
