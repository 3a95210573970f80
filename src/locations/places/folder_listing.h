// The folders of the disk among which the user looks for a place. Everything here may block: background work
// only. Paths are bytes and stay so. No state.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "locations/places/place_looks.h"

namespace corvane {

struct FolderListing {
    std::string path;
    std::vector<std::string> names; // of the folders in it, in no order
    std::error_code error;          // set where it couldn't be listed or made
};

// What `list` gives for this place within the limits of the looks: the error is `timed_out` for a place that
// doesn't answer. `list` owns all that it touches.
FolderListing listWithin(PlaceLooks& looks, const std::string& place,
                         std::function<FolderListing(PlaceLook&)> list);

// The folders in a folder, links to folders among them, hidden ones not. Incomplete when the look was given
// up.
FolderListing listFolders(const std::string& path, PlaceLook& look);

// The listing of the nearest folder on the way up that can be read; of `fallback` where there is none.
FolderListing listNearestFolder(const std::string& path, const std::string& fallback, PlaceLook& look);

// What the user has typed as an absolute path: "~" is `home`, a relative path begins at `shown`. Text only.
std::string typedFolder(std::string_view text, const std::string& shown, const std::string& home);

// Makes a folder and lists it. The name comes from the user: `invalid_argument` unless it is one path
// component, `file_exists` where something has it already.
FolderListing makeFolder(const std::string& parent, const std::string& name, PlaceLook& look);

// Why an archive can't be written there; unset where it can.
std::error_code writingObstacle(const std::string& path);

} // namespace corvane
