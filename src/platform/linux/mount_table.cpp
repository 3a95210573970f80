#include "platform/linux/mount_table.h"

#include <algorithm>
#include <array>
#include <set>
#include <tuple>
#include <utility>

#include "platform/paths.h"
#include "text/split.h"

namespace corvane::platform {

namespace {

constexpr std::array<std::string_view, 3> mediaFolders{"/media", "/run/media", "/Volumes"};

// Folders that belong to the system. What is mounted there is no place to keep mail.
constexpr std::array<std::string_view, 11> systemFolders{"/proc", "/sys", "/dev", "/run", "/boot", "/efi",
                                                         "/snap", "/var", "/usr", "/etc", "/tmp"};

constexpr std::array<std::string_view, 33> kernelTypes{
    "autofs",          "bdev",       "binfmt_misc", "bpf",
    "cgroup",          "cgroup2",    "configfs",    "cpuset",
    "debugfs",         "devpts",     "devtmpfs",    "efivarfs",
    "fuse.gvfsd-fuse", "fuse.lxcfs", "fuse.portal", "fusectl",
    "hugetlbfs",       "mqueue",     "none",        "nsfs",
    "overlay",         "pipefs",     "proc",        "pstore",
    "ramfs",           "rootfs",     "rpc_pipefs",  "securityfs",
    "selinuxfs",       "squashfs",   "sysfs",       "tmpfs",
    "tracefs"};

constexpr std::array<std::string_view, 14> networkTypes{"9p",    "afs",       "beegfs", "ceph",    "cifs",
                                                        "davfs", "glusterfs", "lustre", "ncpfs",   "nfs",
                                                        "nfs4",  "smb3",      "smbfs",  "virtiofs"};

bool contains(const auto& list, std::string_view value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) &&
           (path.size() == folder.size() || folder == "/" || path[folder.size()] == '/');
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

// FUSE file systems are programs in front of something remote; "fuseblk" is one in front of a disk.
bool isNetworkType(std::string_view type) {
    return contains(networkTypes, type) || type == "fuse" || type.starts_with("fuse.");
}

bool isOctal(char digit) {
    return digit >= '0' && digit <= '7';
}

// The kernel writes blank, tab, line feed, backslash and '#' as a backslash and three octal digits.
std::string unescaped(std::string_view field) {
    std::string result;
    result.reserve(field.size());
    for (std::size_t i = 0; i < field.size(); ++i) {
        const std::string_view rest = field.substr(i);
        if (rest.size() >= 4 && rest[0] == '\\' && std::ranges::all_of(rest.substr(1, 3), isOctal)) {
            result += static_cast<char>((rest[1] - '0') * 64 + (rest[2] - '0') * 8 + (rest[3] - '0'));
            i += 3;
        } else {
            result += field[i];
        }
    }
    return result;
}

// "36 35 98:0 /root /mount/point options [optional fields...] - type source super-options"
std::optional<MountEntry> parsedRow(std::string_view row) {
    const auto fields = text::splitText(row, ' ');
    if (fields.size() < 6) return std::nullopt;
    const auto separator = std::find(fields.begin() + 6, fields.end(), "-");
    if (fields.end() - separator < 3 || !fields[4].starts_with('/')) return std::nullopt;
    return MountEntry{.id = std::string(fields[0]),
                      .device = std::string(fields[2]),
                      .mountPoint = unescaped(fields[4]),
                      .fileSystemType = unescaped(separator[1]),
                      .source = unescaped(separator[2])};
}

bool isBrowsable(const MountEntry& mount) {
    const std::string_view path = mount.mountPoint;
    if (mount.fileSystemType == "autofs") return false;
    if (isBelowAny(path, mediaFolders)) return true;
    if (contains(kernelTypes, mount.fileSystemType)) return false;
    if (isNetworkType(mount.fileSystemType)) return isBelow(path, "/mnt");
    return !isAtOrBelowAny(path, systemFolders);
}

} // namespace

std::vector<MountEntry> parseMountTable(std::string_view rows) {
    std::vector<MountEntry> table;
    for (const std::string_view row : text::splitText(rows, '\n')) {
        if (auto entry = parsedRow(row)) table.push_back(std::move(*entry));
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
    } else if (isNetworkType(mount.fileSystemType) || isBelowAny(mount.mountPoint, mediaFolders)) {
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
        std::set<std::pair<std::string_view, std::string_view>> result;
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
