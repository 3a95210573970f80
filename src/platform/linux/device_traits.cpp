#include "platform/linux/mount_table.h"

#include <cctype>

#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane::platform {

namespace {

// dm-crypt on LVM on RAID is three deep.
constexpr int stackingLimit = 8;

// One word of an attribute file; empty when there is none.
std::string attribute(const std::string& path) {
    std::string value = readFilePrefix(path, 64).value_or("");
    while (!value.empty() && std::isspace(static_cast<unsigned char>(value.back())) != 0) value.pop_back();
    return value;
}

bool isPluggableBus(std::string_view name) {
    const auto isNumbered = [&](std::string_view prefix) {
        return name.size() > prefix.size() && name.starts_with(prefix) &&
               std::isdigit(static_cast<unsigned char>(name[prefix.size()])) != 0;
    };
    return isNumbered("usb") || isNumbered("fw") || name.starts_with("thunderbolt");
}

// The bus shows in the names of the folders above the disk; a Thunderbolt disk is a PCI device to the kernel,
// which marks its bridge as removable. USB devices soldered in carry that mark with the value "fixed".
bool isOnPluggableBus(const std::string& sysRoot, std::string_view disk) {
    bool isExternal = false;
    for (; disk.size() > sysRoot.size(); disk = parentPath(disk)) {
        const std::string mark = attribute(joinPath(disk, "removable"));
        if (mark == "fixed") return false;
        isExternal = isExternal || mark == "removable" || isPluggableBus(lastPathComponent(disk));
    }
    return isExternal;
}

// An SD card in a slot isn't marked like other removable media.
bool isRemovableMedium(const std::string& disk) {
    return attribute(joinPath(disk, "removable")) == "1" || attribute(joinPath(disk, "device/type")) == "SD";
}

void addTraits(const std::string& sysRoot, const std::string& device, DeviceTraits& traits, int depth) {
    const bool isPartition = fileExists(joinPath(device, "partition"));
    const std::string disk(isPartition ? parentPath(device) : std::string_view(device));
    const auto below = listDirectory(joinPath(disk, "slaves"), HiddenEntries::skip);
    if (below && !below->empty() && depth < stackingLimit) {
        for (const auto& entry : *below) {
            const auto slave = resolvedPath(joinPath(joinPath(disk, "slaves"), entry.name));
            if (slave) addTraits(sysRoot, *slave, traits, depth + 1);
        }
        return;
    }
    traits.hasRemovableMedium = traits.hasRemovableMedium.value_or(false) || isRemovableMedium(disk);
    traits.isExternal = traits.isExternal.value_or(false) || isOnPluggableBus(sysRoot, parentPath(disk));
}

} // namespace

DeviceTraits deviceTraits(const std::string& sysRoot, const std::string& device) {
    DeviceTraits traits;
    const auto root = resolvedPath(sysRoot);
    const auto folder = resolvedPath(joinPath(sysRoot, "dev/block/" + device));
    if (root && folder) addTraits(*root, *folder, traits, 0);
    return traits;
}

} // namespace corvane::platform
