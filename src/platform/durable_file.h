// Whole files written so that a crash leaves the old content or the new one, never a torn one.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/file_layer.h"

namespace corvane::platform {

// Takes chunks of a file's content in order.
using ByteSink = std::function<void(std::string_view)>;

// Writes a temporary file in the target's folder, syncs it and renames it over the target. On a failure the
// target is untouched and the temporary file is gone. Returns the error, or a falsy code.
std::error_code writeFileAtomically(FileLayer& files, const std::string& path, std::string_view content);

// The same for content that is produced in chunks; `produce` calls the sink and may throw, which removes the
// temporary file and passes on.
std::error_code writeFileAtomically(FileLayer& files, const std::string& path,
                                    const std::function<void(const ByteSink&)>& produce);

// The folder with its missing parents. An existing folder is a success.
std::error_code createDirectories(FileLayer& files, const std::string& path);

// A name next to `path` that no other process or thread uses.
std::string temporarySiblingPath(const std::string& path);

} // namespace corvane::platform
