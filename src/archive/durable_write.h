// Writes that count only when the storage itself has given the bytes back. Blocking: never on the main
// thread. Whoever must not wait for ever runs them in a TimeLimitedWorker.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "platform/file_layer.h"

namespace corvane::archive {

// Creates or empties the file, writes all bytes and syncs it. Throws ArchiveError writeFailed; whatever
// reached the file stays, the next attempt empties it. Never writes through a symbolic link.
void writePOSIXBlocking(platform::FileLayer& files, std::string_view bytes, const std::string& path);

// Whether the file holds exactly these bytes, read past the cache of the write.
bool verifyOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path);

// The strongest flush of each path, a file or a folder; failures are ignored.
void syncDirectories(platform::FileLayer& files, const std::set<std::string>& paths);

// Syncs one file that another process may have written. False when it can't.
bool syncFile(platform::FileLayer& files, const std::string& path);

} // namespace corvane::archive
