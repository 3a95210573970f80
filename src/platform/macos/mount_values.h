// What follows from a row of the list of mounts that getfsstat(2) gives, and from what the system tells about
// a volume. Pure functions over values, built and tested on every system. Thread-safe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace corvane::platform::macos {

// The bits of statfs.f_flags that count here, under the values that <sys/mount.h> has for them.
enum MountFlag : std::uint32_t {
    readOnlyMount = 0x00000001,
    localMount = 0x00001000,
    unbrowsableMount = 0x00100000,
};

struct Mount {
    std::string mountPoint;
    std::string fileSystemType; // as the system spells it
    std::string source;
    std::string id; // of the file system; another one after it went and came
    std::uint32_t flags = 0;
};

// What Core Foundation tells about a volume; absent where it doesn't.
struct VolumeProperties {
    std::optional<std::string> name;
    std::optional<bool> removable;
    std::optional<bool> ejectable;
    std::optional<bool> internal;
    std::optional<bool> browsable;
};

// Whether the volume's properties can be asked for without waiting for another machine.
bool isOnThisMachine(const Mount& mount);

// For a volume on this machine its properties decide, and what they leave open is unknown. Any other is
// ejectable and neither removable nor internal. A trigger of the automounter is never browsable.
Volume volumeOfMount(const Mount& mount, const VolumeProperties& properties);

// "/Volumes/NAME" for a path at or below it: there the system mounts whatever a user plugs in or connects to.
std::optional<std::string> removableMountPointOf(std::string_view path);

// Events from one list to the next: for each browsable volume that went, then each that came.
std::vector<MountEvent> mountChanges(const std::vector<Mount>& before, const std::vector<Mount>& after);

// Of the two answers to how much is free: `important` counts what the system would clear away for the user,
// but is 0 or absent on most file systems other than the system's own. Absent when neither is known.
std::optional<std::int64_t> availableBytes(std::optional<std::int64_t> important,
                                           std::optional<std::int64_t> plain);

} // namespace corvane::platform::macos
