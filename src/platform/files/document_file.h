// Files that a person may have opened by the system without fear that it starts them. Which types a system
// starts is up to the programs on a machine, so the question is asked the safe way round, alike everywhere.
// Blocks.
#pragma once

#include <string>

namespace corvane::platform {

// Whether it is a regular file of a type that only shows or plays something: by its extension, and not by the
// first bytes of a program or a script. False where it can't be read. Give the path with its links resolved.
bool isDocumentFile(const std::string& path);

} // namespace corvane::platform
