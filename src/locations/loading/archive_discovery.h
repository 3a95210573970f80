// Finds archives that nobody told the program about, for instance after a reinstall.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "locations/places/place_looks.h"
#include "platform/platform.h"

namespace corvane {

// The archives directly in the cloud folders and on the external volumes of this machine, and those one level
// below: roots in the order of these places. A place that can't be looked at has none. Background tasks only.
std::vector<std::string> discoverArchiveRoots(const platform::Platform& platform, PlaceLooks& looks);

// Those of the roots at which there is surely no index; one that can't be looked at isn't among them.
std::set<std::string> rootsWithoutIndex(PlaceLooks& looks, const std::set<std::string>& roots);

} // namespace corvane
