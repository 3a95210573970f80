// What the screens say about the chosen destination. Asking touches disks that may hang: background tasks
// only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "locations/places/place_looks.h"
#include "platform/platform.h"

namespace corvane {

struct DestinationFacts {
    bool connected = true; // also without a destination: nothing is lost then
    std::optional<std::string> cloudName;
    std::optional<std::string> filesystemName; // as people know it; a FAT disk wants a warning
    bool inSymlinkContainer = false;           // a provider's shortcuts, which aren't synchronised
    bool onInternalDisk = false;
    std::optional<std::int64_t> availableBytes;
    std::vector<std::string> rememberedManualDestinations; // earlier folders that no detection finds

    friend bool operator==(const DestinationFacts&, const DestinationFacts&) = default;
};

// Of a destination that isn't connected only what its path tells is set. `knownLocations` are the roots ever
// used.
DestinationFacts computeDestinationFacts(const platform::Platform& platform,
                                         const std::optional<std::string>& destination,
                                         const std::vector<std::string>& knownLocations);

// The same within the limits of the looks: a destination that doesn't answer counts as not connected, and an
// earlier folder that doesn't is left out.
DestinationFacts lookAtDestination(PlaceLooks& looks, const platform::Platform& platform,
                                   const std::optional<std::string>& destination,
                                   const std::vector<std::string>& knownLocations);

// For the type name that the system gives.
std::string shownFileSystemName(const std::string& typeName);

} // namespace corvane
