// Whether an archive's root can be reached, and on what kind of place it lies. Stateless; touches disks and
// belongs on a background task.
#pragma once

#include <string>

#include "platform/platform.h"
#include "records/archived/archive_records.h"

namespace corvane {

// Whether the removable disk that holds the path is there, be its folders there or not. False for a path
// elsewhere.
bool volumeMounted(const platform::Platform& platform, const std::string& path);

// The disk is there for a root on a removable disk, the folder itself for any other.
bool isLocationConnected(const platform::Platform& platform, const std::string& rootPath);

// `connected` is what isLocationConnected() gives: the volume of a root that can't be reached isn't asked
// for.
ArchiveLocation::Kind locationKind(const platform::Platform& platform, const std::string& rootPath,
                                   bool connected);

// Whether the volume that holds the path is built in; one that can't be told counts as such.
bool isOnInternalVolume(const platform::Platform& platform, const std::string& path);

} // namespace corvane
