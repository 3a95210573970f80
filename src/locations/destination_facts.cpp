#include "locations/destination_facts.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "locations/archive_locations.h"
#include "locations/places/cloud_providers.h"
#include "platform/files/directory.h"
#include "text/case.h"

namespace corvane {

namespace {

bool isInSymlinkContainer(const std::string& path) {
    return platform::resolvedPath(path).value_or(path).find("/.symlinks/") != std::string::npos;
}

std::vector<std::string> manualDestinations(const platform::Platform& platform,
                                            const std::vector<std::string>& knownLocations) {
    std::vector<std::string> manual;
    for (const std::string& path : knownLocations) {
        if (isInCloudFolder(path) || platform.removableMountPoint(path)) continue;
        if (platform::fileExists(path)) manual.push_back(path);
    }
    return manual;
}

} // namespace

DestinationFacts computeDestinationFacts(const platform::Platform& platform,
                                         const std::optional<std::string>& destination,
                                         const std::vector<std::string>& knownLocations) {
    DestinationFacts facts;
    facts.rememberedManualDestinations = manualDestinations(platform, knownLocations);
    if (!destination) return facts;
    facts.connected = platform::fileExists(*destination);
    facts.cloudName = cloudProviderName(*destination);
    facts.inSymlinkContainer = isInSymlinkContainer(*destination);
    if (!facts.connected) return facts;
    if (const auto type = platform.fileSystemTypeName(*destination)) {
        facts.filesystemName = shownFileSystemName(*type);
    }
    facts.onInternalDisk = isOnInternalVolume(platform, *destination);
    facts.availableBytes = platform.availableCapacity(*destination);
    return facts;
}

DestinationFacts lookAtDestination(PlaceLooks& looks, const platform::Platform& platform,
                                   const std::optional<std::string>& destination,
                                   const std::vector<std::string>& knownLocations) {
    DestinationFacts facts;
    if (destination) {
        facts.connected = false;
        facts.cloudName = cloudProviderName(*destination);
        const auto found = looks.ask<DestinationFacts>(*destination, [&platform, destination](PlaceLook&) {
            return computeDestinationFacts(platform, destination, {});
        });
        if (found) facts = *found;
    }
    const auto earlier = looks.askAll<std::vector<std::string>>(
        knownLocations,
        [&platform](PlaceLook&, const std::string& place) { return manualDestinations(platform, {place}); });
    for (const auto& found : earlier) {
        if (found) std::ranges::copy(*found, std::back_inserter(facts.rememberedManualDestinations));
    }
    return facts;
}

std::string shownFileSystemName(const std::string& typeName) {
    static const std::map<std::string, std::string> names = {
        {"msdos", "FAT32"}, {"exfat", "exFAT"}, {"apfs", "APFS"}, {"hfs", "Mac OS 扩展"}};
    const auto known = names.find(typeName);
    return known == names.end() ? text::asciiUppercased(typeName) : known->second;
}

} // namespace corvane
