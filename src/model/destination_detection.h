// The places on this machine where an archive may lie: cloud folders and external volumes. Stateless; every
// operation but `prettyBrandName` touches folders that may hang, so it belongs on a background task, and
// leaves a marker before each step by which a hang can be found.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"
#include "records/file_url.h"

namespace corvane {

struct CloudStorageProvider {
    std::string id;
    std::string name;
    std::optional<std::string> detail; // usually the account
    FileURL url;
    std::string icon; // the symbol's name on the screens

    struct Info {
        std::string name;
        std::optional<std::string> detail;
        FileURL url;
    };

    // iCloud first, then the providers' folders in the order of their names.
    static std::vector<CloudStorageProvider> detect(const platform::Platform& platform);

    // Mounted volumes that are shown to the user and aren't built in.
    static std::vector<CloudStorageProvider> detectRemovableVolumes(const platform::Platform& platform);

    // Of a folder under "Library/CloudStorage".
    static Info providerInfo(const std::string& folder);

    static std::string prettyBrandName(std::string_view brand);

    // The folder that holds the user's files: one level down, under a name in the user's language. The folder
    // itself when there is none.
    static FileURL googleDriveActiveURL(const std::string& root);

    friend bool operator==(const CloudStorageProvider&, const CloudStorageProvider&) = default;
};

} // namespace corvane
