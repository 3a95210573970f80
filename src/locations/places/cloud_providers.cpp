#include "locations/places/cloud_providers.h"

#include <array>
#include <vector>

#include "text/case.h"

namespace corvane {

namespace {

struct Provider {
    std::vector<std::string_view> marks;
    std::string_view name;
};

// The first match from the top counts.
const std::vector<Provider>& providers() {
    static const std::vector<Provider> all = {
        {{"Nutstore", "坚果云", "jianguoyun"}, "坚果云"},
        {{"BaiduNetdisk", "百度网盘", "baiduyun"}, "百度网盘"},
        {{"aliyundrive", "alipan", "阿里云盘"}, "阿里云盘"},
        {{"Weiyun", "微云"}, "微云"},
        {{iCloudFolderName, "Mobile Documents"}, iCloudName},
        {{"CloudStorage/GoogleDrive", "GoogleDrive-"}, "Google Drive"},
        {{"CloudStorage/OneDrive", "OneDrive"}, "OneDrive"},
        {{"Dropbox"}, "Dropbox"},
        {{"pCloud"}, "pCloud"},
        {{"Seafile"}, "Seafile"},
        {{"Nextcloud"}, "Nextcloud"},
    };
    return all;
}

} // namespace

std::optional<std::string> cloudProviderName(std::string_view path) {
    for (const Provider& provider : providers()) {
        for (const std::string_view mark : provider.marks) {
            if (text::containsIgnoringCase(path, mark)) return std::string(provider.name);
        }
    }
    return cloudStorageFolderProviderName(path);
}

std::optional<std::string> cloudStorageFolderProviderName(std::string_view path) {
    constexpr std::string_view container = "/Library/CloudStorage/";
    const std::size_t at = path.find(container);
    if (at == std::string_view::npos) return std::nullopt;
    std::string_view folder = path.substr(at + container.size());
    folder = folder.substr(0, folder.find('/'));
    if (folder.empty()) return std::nullopt;
    const std::string_view brand = folder.substr(0, folder.find('-'));
    const std::string lowered = text::lowercased(brand);
    if (lowered == "googledrive") return "Google Drive";
    if (lowered == "pclouddrive") return "pCloud";
    return std::string(brand);
}

bool isInCloudFolder(std::string_view path) {
    return path.find("Mobile Documents") != std::string_view::npos ||
           path.find("Library/CloudStorage") != std::string_view::npos;
}

} // namespace corvane
