// The table of mounts, and what follows from a row of it. libmount reads the table and knows file system
// types; which volumes a user means and whether they can be unplugged is decided here. Functions over values,
// but for the table itself and the look at sysfs for the kind of device that a volume lies on. Thread-safe.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace corvane::platform {

struct MountEntry {
    int id = 0;         // of the mount, not of the volume
    std::string device; // "major:minor"
    std::string mountPoint;
    std::string fileSystemType; // as the kernel spells it
    std::string source;
    bool isNetwork = false;  // by its type: the files lie elsewhere, or a FUSE program shows them
    bool isOfSystem = false; // by its type: an interface of the kernel or a store of the system
};

// What the device of a volume tells; absent where there is no device or it doesn't say.
struct DeviceTraits {
    std::optional<bool> hasRemovableMedium; // a card reader, an optical drive, most sticks
    std::optional<bool> isExternal;         // on a bus that can be unplugged
};

constexpr const char* mountTableFile = "/proc/self/mountinfo";

// The rows of a file in the form of proc_pid_mountinfo(5), in their order, octal escapes resolved. A row that
// can't be parsed is left out; empty when the file can't be read.
std::vector<MountEntry> readMountTable(const std::string& file = mountTableFile);

// The row whose mount point is the longest one above the path; of equal ones the last, which hides the
// others; null when there is none. The path is absolute and has no links left in it.
const MountEntry* mountHolding(const std::vector<MountEntry>& table, std::string_view path);

// Without the rows that a later mount at the same place hides.
std::vector<MountEntry> visibleMounts(const std::vector<MountEntry>& table);

// Flags of a volume. Where a device answers, it decides. Without one (network, FUSE, memory):
// - below "/media", "/run/media" and "/Volumes", where people plug in things: ejectable and not internal;
// - a network file system anywhere is ejectable and not internal;
// - anything else is unknown.
// Browsable is what lies below those folders, network file systems also below "/mnt", and volumes with a
// device outside of the folders of the system itself; never a kernel interface or an automount trigger.
Volume volumeOfMount(const MountEntry& mount, const DeviceTraits& traits);

// The type's name in the spelling of platform.h.
std::string fileSystemName(std::string_view kernelType);

// See Platform::removableMountPoint. udisks mounts at /media/USER/LABEL and /run/media/USER/LABEL; other
// tools at /media/LABEL. By the text alone two components below /media are taken for the former: a disk that
// is gone then never looks as if it were there, since USER's folder stays when LABEL goes.
std::optional<std::string> removableMountPointOf(std::string_view path);

// Events from one state of the table to the next: for each browsable volume that went, then each that came.
std::vector<MountEvent> mountChanges(const std::vector<MountEntry>& before,
                                     const std::vector<MountEntry>& after);

// Looks into `sysRoot` ("/sys"), through encryption and RAID down to the disks.
DeviceTraits deviceTraits(const std::string& sysRoot, const std::string& device);

} // namespace corvane::platform
