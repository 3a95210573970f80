#include "platform/linux/mount_table.h"

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <utility>

#include <libmount/libmount.h>
#include <sys/sysmacros.h>

#include "platform/paths.h"

namespace corvane::platform {

namespace {

constexpr std::array<std::string_view, 3> mediaFolders{"/media", "/run/media", "/Volumes"};

// Folders that belong to the system. What is mounted there is no place to keep mail.
constexpr std::array<std::string_view, 11> systemFolders{"/proc", "/sys", "/dev", "/run", "/boot", "/efi",
                                                         "/snap", "/var", "/usr", "/etc", "/tmp"};

// What libmount's own list of network file systems leaves out, those of virtual machines with them. FUSE file
// systems are programs in front of something remote; "fuseblk" is one in front of a disk.
constexpr std::array<std::string_view, 6> furtherNetworkTypes{"beegfs",    "ceph",   "davfs",
                                                              "glusterfs", "lustre", "virtiofs"};

// File systems in which the system keeps things of its own, beyond libmount's pseudo file systems.
constexpr std::array<std::string_view, 4> furtherSystemTypes{"fuse.gvfsd-fuse", "fuse.lxcfs", "fuse.portal",
                                                             "squashfs"};

// A folder of the user's that VirtualBox shares, though libmount calls it a pseudo file system.
constexpr std::string_view virtualBoxType = "vboxsf";

bool contains(const auto& list, std::string_view value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

bool isBelow(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() + 1 && isAtOrBelow(path, folder);
}

bool isBelowAny(std::string_view path, const auto& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](std::string_view folder) { return isBelow(path, folder); });
}

bool isAtOrBelowAny(std::string_view path, const auto& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](std::string_view folder) { return isAtOrBelow(path, folder); });
}

bool isNetworkType(libmnt_fs* row, std::string_view type) {
    return mnt_fs_is_netfs(row) == 1 || type == "fuse" || type.starts_with("fuse.") ||
           contains(furtherNetworkTypes, type);
}

bool isSystemType(libmnt_fs* row, std::string_view type) {
    if (contains(furtherSystemTypes, type)) return true;
    return mnt_fs_is_pseudofs(row) == 1 && type != virtualBoxType && !isNetworkType(row, type);
}

std::string textOf(const char* text) {
    return text == nullptr ? "" : text;
}

MountEntry entryOf(libmnt_fs* row) {
    const dev_t device = mnt_fs_get_devno(row);
    const std::string type = textOf(mnt_fs_get_fstype(row));
    return MountEntry{.id = mnt_fs_get_id(row),
                      .device = std::to_string(major(device)) + ":" + std::to_string(minor(device)),
                      .mountPoint = textOf(mnt_fs_get_target(row)),
                      .fileSystemType = type,
                      .source = textOf(mnt_fs_get_source(row)),
                      .isNetwork = isNetworkType(row, type),
                      .isOfSystem = isSystemType(row, type)};
}

bool isBrowsable(const MountEntry& mount) {
    const std::string_view path = mount.mountPoint;
    if (mount.fileSystemType == "autofs") return false;
    if (isBelowAny(path, mediaFolders)) return true;
    if (mount.isOfSystem) return false;
    if (mount.isNetwork) return isBelow(path, "/mnt");
    return !isAtOrBelowAny(path, systemFolders);
}

} // namespace

std::vector<MountEntry> readMountTable(const std::string& file) {
    const std::unique_ptr<libmnt_table, decltype(&mnt_unref_table)> rows(mnt_new_table(), mnt_unref_table);
    const std::unique_ptr<libmnt_iter, decltype(&mnt_free_iter)> position(mnt_new_iter(MNT_ITER_FORWARD),
                                                                          mnt_free_iter);
    if (!rows || !position || mnt_table_parse_file(rows.get(), file.c_str()) != 0) return {};
    std::vector<MountEntry> table;
    libmnt_fs* row = nullptr;
    while (mnt_table_next_fs(rows.get(), position.get(), &row) == 0) {
        if (textOf(mnt_fs_get_target(row)).starts_with('/')) table.push_back(entryOf(row));
    }
    return table;
}

const MountEntry* mountHolding(const std::vector<MountEntry>& table, std::string_view path) {
    const MountEntry* holding = nullptr;
    for (const auto& entry : table) {
        if (!isAtOrBelow(path, entry.mountPoint)) continue;
        if (holding == nullptr || entry.mountPoint.size() >= holding->mountPoint.size()) holding = &entry;
    }
    return holding;
}

std::vector<MountEntry> visibleMounts(const std::vector<MountEntry>& table) {
    std::set<std::string_view> seen;
    std::vector<MountEntry> visible;
    for (auto entry = table.rbegin(); entry != table.rend(); ++entry) {
        if (seen.insert(entry->mountPoint).second) visible.push_back(*entry);
    }
    std::ranges::reverse(visible);
    return visible;
}

Volume volumeOfMount(const MountEntry& mount, const DeviceTraits& traits) {
    Volume volume;
    volume.path = mount.mountPoint;
    if (mount.mountPoint != "/") volume.name = lastPathComponent(mount.mountPoint);
    volume.browsable = isBrowsable(mount);
    if (traits.isExternal) {
        const bool removable = traits.hasRemovableMedium.value_or(false);
        volume.removable = removable;
        volume.ejectable = removable || *traits.isExternal;
        volume.internal = !*volume.ejectable;
    } else if (mount.isNetwork || isBelowAny(mount.mountPoint, mediaFolders)) {
        volume.removable = false;
        volume.ejectable = true;
        volume.internal = false;
    }
    return volume;
}

std::string fileSystemName(std::string_view kernelType) {
    if (kernelType == "vfat" || kernelType == "msdos") return "msdos";
    if (kernelType == "hfsplus" || kernelType == "hfs") return "hfs";
    return std::string(kernelType);
}

std::optional<std::string> removableMountPointOf(std::string_view path) {
    const auto firstComponents = [&](std::size_t count) -> std::optional<std::string> {
        std::size_t end = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t start = end + 1;
            if (start >= path.size() || path[start] == '/') return std::nullopt;
            end = std::min(path.find('/', start), path.size());
        }
        return std::string(path.substr(0, end));
    };
    if (path.starts_with("/Volumes/")) return firstComponents(2);
    if (path.starts_with("/run/media/")) return firstComponents(4);
    if (!path.starts_with("/media/")) return std::nullopt;
    const auto ofUser = firstComponents(3);
    return ofUser ? ofUser : firstComponents(2);
}

std::vector<MountEvent> mountChanges(const std::vector<MountEntry>& before,
                                     const std::vector<MountEntry>& after) {
    // With its id: a stick that is pulled and plugged in again between two looks went and came.
    const auto volumes = [](const std::vector<MountEntry>& table) {
        std::set<std::pair<std::string_view, int>> result;
        for (const auto& entry : table) {
            if (isBrowsable(entry)) result.emplace(entry.mountPoint, entry.id);
        }
        return result;
    };
    const auto earlier = volumes(before);
    const auto later = volumes(after);
    const auto absentFrom = [](const auto& set) {
        return [&set](const auto& volume) { return !set.contains(volume); };
    };
    std::vector<MountEvent> events;
    events.insert(events.end(), static_cast<std::size_t>(std::ranges::count_if(earlier, absentFrom(later))),
                  MountEvent::unmounted);
    events.insert(events.end(), static_cast<std::size_t>(std::ranges::count_if(later, absentFrom(earlier))),
                  MountEvent::mounted);
    return events;
}

} // namespace corvane::platform
