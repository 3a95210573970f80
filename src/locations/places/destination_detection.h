// The places of this machine where an archive may lie: the iCloud folder, the folders of cloud providers,
// external volumes. They may hang, so every step is marked in the log, and nothing here runs on the main
// thread. No state.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "locations/places/place_looks.h"
#include "platform/platform.h"

namespace corvane {

struct CloudStorageProvider {
    std::string id;
    std::string name;
    std::optional<std::string> detail;
    std::string path;
    std::string icon;        // name of a symbol
    bool hasAnswered = true; // else where it holds the user's files isn't known

    friend bool operator==(const CloudStorageProvider&, const CloudStorageProvider&) = default;
};

// Where iCloud keeps the user's files; it need not be there.
std::string iCloudFolder(const platform::Platform& platform);

// iCloud first, then the folders in the order of their names; those that don't answer too.
std::vector<CloudStorageProvider> detectCloudStorage(PlaceLooks& looks, const platform::Platform& platform);

// The folders under "Library/CloudStorage" of the user's home, in the order of their names. Doesn't look into
// them.
std::vector<std::string> cloudStorageFolders(const platform::Platform& platform);

// Where such a folder holds the user's files; any other folder itself.
std::string cloudStorageContent(const std::string& folder);

// Mounted volumes that are known to be external and shown to users; empty when the system can't tell.
std::vector<CloudStorageProvider> detectRemovableVolumes(const platform::Platform& platform);

// Name, detail and path for a folder under "Library/CloudStorage"; icon and id are left to the caller.
CloudStorageProvider providerInfo(const std::string& folder);

// The name that people know a provider by; the brand itself for one that isn't in the list.
std::string prettyBrandName(std::string_view brand);

// Where a Google Drive folder holds the user's files: one level down, under a name that depends on the
// language; the folder itself when none is found.
std::string googleDriveActivePath(const std::string& root);

} // namespace corvane
