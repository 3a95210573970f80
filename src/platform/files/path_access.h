// What this process may do with a file or folder, and whose it is: what one has to know to give the right
// that is missing. Blocks.
#pragma once

#include <cstdint>
#include <string>

namespace corvane::platform {

struct PathAccess {
    std::string path;
    bool isThere = false; // false also where nobody may look
    bool isFolder = false;
    bool canRead = false;
    bool canEnter = false; // a folder's names can be gone through; true of a file
    std::uint32_t mode = 0;
    std::uint32_t ownerID = 0;
    std::string owner; // by name; empty where the system has none
    std::string user;  // of this process
};

// Links are followed.
PathAccess accessOf(const std::string& path);

// Of the first folder on the way to it that can't be gone through, else its own.
PathAccess obstacleOnTheWay(const std::string& path);

// "drwx------".
std::string modeText(const PathAccess& access);

} // namespace corvane::platform
