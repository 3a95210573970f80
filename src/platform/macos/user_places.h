// Where a Mac keeps what belongs to a program and its user. Text only; built and tested on every system.
// Thread-safe.
#pragma once

#include <string>
#include <vector>

namespace corvane::platform::macos {

struct UserPlaces {
    std::string applicationSupport;
    std::string settings;
};

// The settings lie where those of all programs do, under the program's identifier, but not as the ".plist" of
// that name: such a file belongs to the system's own service, which writes it back from its memory.
UserPlaces userPlaces(const std::string& home);

// For the folder of a program: the resources of its bundle when it lies in one, else the folder itself and
// what an installation puts beside "bin". Empty for an empty folder.
std::vector<std::string> resourceFolders(const std::string& programFolder);

// In the order in which to look. The last one is a placeholder on a Mac without the developer tools, which
// offers to install them.
std::vector<std::string> pythonRuntimes();

// The first absolute one of the two without a trailing slash, else "/tmp".
std::string temporaryFolder(const std::string& ofEnvironment, const std::string& ofSystem);

} // namespace corvane::platform::macos
