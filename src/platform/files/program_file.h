// Files that a desktop may run, install, mount or follow to another place when they are opened. Whoever sent
// a file has chosen its name and its bytes, so the question is asked the safe way round. Only looks, and may
// block; any thread.
#pragma once

#include <string>
#include <string_view>

namespace corvane::platform {

// By the name alone, whatever its case and the blanks and dots at its end.
bool isProgramName(std::string_view name);

// By the first bytes of a file: a machine's program, a script with its interpreter, a desktop entry, a
// package.
bool beginsLikeProgram(std::string_view firstBytes);

// By name, first bytes, and by the permission to be executed where the name has no extension that would tell
// the type. True as well for a folder that isn't plain, for what is no regular file, and where nobody could
// look.
bool mayBeProgram(const std::string& path);

} // namespace corvane::platform
