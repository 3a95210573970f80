// Whether an archive can lie in a folder, as it is found out before the folder becomes the destination.
#pragma once

#include <string>

#include <QString>

#include "locations/places/place_looks.h"

namespace corvane::screens {

// Why an archive can't lie there, in the user's words; empty where it can. `makes`: makes the folder where
// there is none. Blocks; any thread.
QString archiveFolderObstacle(const std::string& path, bool makes, PlaceLooks& looks);

} // namespace corvane::screens
