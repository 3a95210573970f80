// Whole files written so that a crash leaves the old content or the new one, never a torn one.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/files/layers/file_layer.h"
#include "platform/files/writing/private_files.h"

namespace corvane::platform {

// Takes chunks of a file's content in order.
using ByteSink = std::function<void(std::string_view)>;

// Writes a temporary file in the target's folder, syncs it, renames it over the target and syncs the folder.
// `mode` is the most that the new file permits: a new one has it, one that takes an old one's place what both
// permit. A target that is a symbolic link is itself replaced, not the file that it leads to: the folder may
// be somebody else's. Returns the error, or a falsy code. On a failure the temporary file is gone and the
// target is untouched, save for a failed sync of the folder: then the new content is in place but may not
// outlive a power cut.
std::error_code writeFileAtomically(FileLayer& files, const std::string& path, std::string_view content,
                                    mode_t mode = privateFileMode);

// The same for content that is produced in chunks, gathered to 1 MiB. `produce` calls the sink and may throw,
// which removes the temporary file and passes on. After a failed write the sink drops what it is given.
std::error_code writeFileAtomically(FileLayer& files, const std::string& path,
                                    const std::function<void(const ByteSink&)>& produce,
                                    mode_t mode = privateFileMode);

// Makes a new file of these bytes that only this user may read, syncs it and its folder. EEXIST when anything
// is there already, a link included. On a failure what was made is gone.
std::error_code writeNewFile(FileLayer& files, const std::string& path, std::string_view content);

// Makes the folder with its missing parents, for this user only. An existing folder is a success; the error
// of the first one that can't be made otherwise.
std::error_code createDirectories(FileLayer& files, const std::string& path);

// A hidden name next to `path` that no other process or thread uses.
std::string temporarySiblingPath(const std::string& path);

} // namespace corvane::platform
