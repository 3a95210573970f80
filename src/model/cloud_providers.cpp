#include "model/cloud_providers.h"

#include <array>

#include "platform/paths.h"
#include "text/case.h"

namespace corvane {

namespace {

struct ProviderMark {
    std::string_view part; // of a path, in any case
    std::string_view name;
};

// The first match counts.
constexpr std::array providerMarks = {
    ProviderMark{"Nutstore", "坚果云"},
    ProviderMark{"坚果云", "坚果云"},
    ProviderMark{"jianguoyun", "坚果云"},
    ProviderMark{"BaiduNetdisk", "百度网盘"},
    ProviderMark{"百度网盘", "百度网盘"},
    ProviderMark{"baiduyun", "百度网盘"},
    ProviderMark{"aliyundrive", "阿里云盘"},
    ProviderMark{"alipan", "阿里云盘"},
    ProviderMark{"阿里云盘", "阿里云盘"},
    ProviderMark{"Weiyun", "微云"},
    ProviderMark{"微云", "微云"},
    ProviderMark{"com~apple~CloudDocs", "iCloud 云盘"},
    ProviderMark{"Mobile Documents", "iCloud 云盘"},
    ProviderMark{"CloudStorage/GoogleDrive", "Google Drive"},
    ProviderMark{"GoogleDrive-", "Google Drive"},
    ProviderMark{"CloudStorage/OneDrive", "OneDrive"},
    ProviderMark{"OneDrive", "OneDrive"},
    ProviderMark{"Dropbox", "Dropbox"},
    ProviderMark{"pCloud", "pCloud"},
    ProviderMark{"Seafile", "Seafile"},
    ProviderMark{"Nextcloud", "Nextcloud"},
};

} // namespace

std::optional<std::string> cloudProviderName(std::string_view path) {
    for (const ProviderMark& mark : providerMarks) {
        if (text::containsIgnoringCase(path, mark.part)) return std::string(mark.name);
    }
    return cloudStorageFolderProviderName(path);
}

std::optional<std::string> cloudStorageFolderProviderName(std::string_view path) {
    constexpr std::string_view parent = "/Library/CloudStorage/";
    const std::size_t found = path.find(parent);
    if (found == std::string_view::npos) return std::nullopt;
    std::string_view name = path.substr(found + parent.size());
    name = name.substr(0, name.find('/'));
    name = name.substr(0, name.find('-'));
    if (name.empty()) return std::nullopt;
    return storageBrandName(name);
}

std::string storageBrandName(std::string_view brand) {
    const std::string lower = text::lowercased(brand);
    if (lower == "googledrive") return "Google Drive";
    if (lower == "pclouddrive") return "pCloud";
    return std::string(brand);
}

std::string canonicalPath(std::string_view path) {
    return platform::standardizedPath(path);
}

bool isInCloudFolder(std::string_view path) {
    return path.find("Mobile Documents") != std::string_view::npos ||
           path.find("Library/CloudStorage") != std::string_view::npos;
}

} // namespace corvane
