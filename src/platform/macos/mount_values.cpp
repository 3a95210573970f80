#include "platform/macos/mount_values.h"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/paths.h"

namespace corvane::platform::macos {

namespace {

bool isTrigger(const Mount& mount) {
    return mount.fileSystemType == "autofs";
}

bool isBrowsable(const Mount& mount) {
    return !isTrigger(mount) && (mount.flags & unbrowsableMount) == 0;
}

} // namespace

bool isOnThisMachine(const Mount& mount) {
    return (mount.flags & localMount) != 0 && !isTrigger(mount);
}

Volume volumeOfMount(const Mount& mount, const VolumeProperties& properties) {
    Volume volume;
    volume.path = mount.mountPoint;
    volume.name = mount.mountPoint == "/" ? std::string_view() : lastPathComponent(mount.mountPoint);
    volume.browsable = isBrowsable(mount);
    if (!isOnThisMachine(mount)) {
        volume.removable = false;
        volume.ejectable = true;
        volume.internal = false;
        return volume;
    }
    if (properties.name) volume.name = *properties.name;
    volume.removable = properties.removable;
    volume.ejectable = properties.ejectable;
    volume.internal = properties.internal;
    volume.browsable = properties.browsable.value_or(*volume.browsable);
    return volume;
}

std::optional<std::string> removableMountPointOf(std::string_view path) {
    constexpr std::string_view folder = "/Volumes/";
    if (!path.starts_with(folder)) return std::nullopt;
    const std::size_t end = std::min(path.find('/', folder.size()), path.size());
    if (end == folder.size()) return std::nullopt;
    return std::string(path.substr(0, end));
}

std::vector<MountEvent> mountChanges(const std::vector<Mount>& before, const std::vector<Mount>& after) {
    const auto volumes = [](const std::vector<Mount>& mounts) {
        std::set<std::pair<std::string_view, std::string_view>> result;
        for (const Mount& mount : mounts) {
            if (isBrowsable(mount)) result.emplace(mount.mountPoint, mount.id);
        }
        return result;
    };
    const auto earlier = volumes(before);
    const auto later = volumes(after);
    const auto missingFrom = [](const auto& from, const auto& in) {
        return static_cast<std::size_t>(
            std::ranges::count_if(from, [&](const auto& volume) { return !in.contains(volume); }));
    };
    std::vector<MountEvent> events(missingFrom(earlier, later), MountEvent::unmounted);
    events.insert(events.end(), missingFrom(later, earlier), MountEvent::mounted);
    return events;
}

std::optional<std::int64_t> availableBytes(std::optional<std::int64_t> important,
                                           std::optional<std::int64_t> plain) {
    return important && *important > 0 ? important : plain;
}

} // namespace corvane::platform::macos
