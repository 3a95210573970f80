// Folders that a desktop shows as one thing and starts, installs or loads when they are opened: programs,
// installers, plug-ins. Which names mean that is up to the programs on a machine, so the question is asked
// the safe way round, alike on every system.
#pragma once

#include <string>

namespace corvane::platform {

// Whether opening the folder can do nothing but show what is in it: its name has no extension, as all types
// of packages are told by, and it isn't laid out like a package whose extension was taken away. False for
// what isn't a folder or can't be listed. Give the path with its links resolved.
bool isPlainFolder(const std::string& path);

} // namespace corvane::platform
