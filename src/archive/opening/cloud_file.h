// Whether an archived file is on this machine. A cloud folder may keep a placeholder in its place, a disk may
// be away, and an archive's index may name anything. Only looks, and may block; any thread.
#pragma once

#include <string>
#include <string_view>

#include "platform/platform.h"

namespace corvane::archive {

enum class CloudFileState {
    available,
    inCloud, // the provider has it
    gone,    // its folder answered, and neither it nor its placeholder is there
    unknown, // nobody could look
};

CloudFileState cloudFileState(const platform::Platform& platform, const std::string& path);

// The same for a mail in an archive. What is no regular .eml file below the root, reached through no link
// that leads out of it, is gone; where the root isn't there nobody can look.
CloudFileState archivedFileState(const platform::Platform& platform, const std::string& root,
                                 std::string_view relativePath);

} // namespace corvane::archive
