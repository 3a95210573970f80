// A walk through all folders below one, in the same order each time. Hidden entries are left out and links to
// folders aren't followed, so the walk always ends and never leaves its root. What can't be listed has no
// entries. Only looks.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace corvane::mailstore {

struct FolderWalk {
    // Whether to go into a folder; without one, into all.
    std::function<bool(const std::string& path, std::string_view name)> entersFolder;
    // For each file and each link to one; false ends the walk.
    std::function<bool(const std::string& path, std::string_view name)> visitsFile;
};

// The files of a folder come before those of the folders in it. False when the root itself can't be listed.
bool walkFolder(const std::string& root, const FolderWalk& walk);

} // namespace corvane::mailstore
