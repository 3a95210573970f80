#include "locations/archive_locations.h"

#include <algorithm>

#include "locations/places/cloud_providers.h"
#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane {

bool volumeMounted(const platform::Platform& platform, const std::string& path) {
    const auto mountPoint = platform.removableMountPoint(path);
    if (!mountPoint) return false;
    // Folders under "/Volumes" come and go with their disks. Elsewhere one may stand there without its disk,
    // and an archive must not be taken for deleted because of that: the mount table decides.
    const auto volumes = path.starts_with("/Volumes/") ? std::nullopt : platform.mountedVolumes();
    if (!volumes) return platform::fileExists(*mountPoint);
    return std::ranges::any_of(*volumes,
                               [&](const platform::Volume& volume) {
                                   return platform::isAtOrBelow(path, volume.path) &&
                                          platform.removableMountPoint(volume.path);
                               }) ||
           platform::fileExists(path);
}

bool isLocationConnected(const platform::Platform& platform, const std::string& rootPath) {
    return platform.removableMountPoint(rootPath) ? volumeMounted(platform, rootPath)
                                                  : platform::fileExists(rootPath);
}

ArchiveLocation::Kind locationKind(const platform::Platform& platform, const std::string& rootPath,
                                   bool connected) {
    using enum ArchiveLocation::Kind;
    if (isInCloudFolder(rootPath)) return cloud;
    if (connected) return isOnInternalVolume(platform, rootPath) ? local : removable;
    return platform.removableMountPoint(rootPath) ? removable : local;
}

bool isOnInternalVolume(const platform::Platform& platform, const std::string& path) {
    const auto volume = platform.volumeOf(path);
    if (!volume) return true;
    if (volume->removable.value_or(false) || volume->ejectable.value_or(false)) return false;
    return volume->internal.value_or(true);
}

} // namespace corvane
