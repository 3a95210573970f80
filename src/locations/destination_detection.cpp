#include "locations/destination_detection.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "platform/files/directory.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"
#include "text/case.h"
#include "text/collation.h"

namespace corvane {

namespace {

void traceHang(std::string_view step) {
    consoleLine(fmt::format("[HangTrace] {}", step));
}

constexpr std::array<std::string_view, 8> driveNames = {"My Drive",     "我的云端硬盘", "Mijn Drive",
                                                        "Mi unidad",    "Mon Drive",    "Drive personale",
                                                        "Meine Ablage", "Il mio Drive"};
constexpr std::array<std::string_view, 7> foreignDriveNames = {
    "其他计算机",      "Other computers",      "Shared drives",      "共享云端硬盘",
    "Drives partagés", "Unidades compartidas", "Outros computadores"};

} // namespace

std::vector<std::string> cloudStorageFolders(const platform::Platform& platform) {
    const std::string container =
        platform::joinPath(platform.realUserHomeDirectory(), "Library/CloudStorage");
    std::vector<std::string> folders;
    const auto entries = platform::listDirectory(container, platform::HiddenEntries::skip);
    for (const auto& entry : entries.value_or(std::vector<platform::DirectoryEntry>())) {
        traceHang("detect stat " + entry.name);
        if (entry.kind == platform::EntryKind::directory)
            folders.push_back(platform::joinPath(container, entry.name));
    }
    return folders;
}

std::vector<CloudStorageProvider> detectCloudStorage(const platform::Platform& platform) {
    traceHang("detect begin");
    std::vector<CloudStorageProvider> found;
    const std::string home = platform.realUserHomeDirectory();
    const std::string iCloud = platform::joinPath(home, "Library/Mobile Documents/com~apple~CloudDocs");
    traceHang("detect stat iCloud");
    if (platform::isDirectory(iCloud)) {
        found.push_back({iCloud, "iCloud 云盘", std::nullopt, iCloud, "icloud.fill"});
    }
    for (const std::string& folder : cloudStorageFolders(platform)) {
        found.push_back(providerInfo(folder));
        found.back().icon = "cloud.fill";
    }
    traceHang(fmt::format("detect done count={}", found.size()));
    return found;
}

std::string cloudStorageContent(const std::string& folder) {
    return platform::parentPath(folder).ends_with("/Library/CloudStorage") ? providerInfo(folder).path
                                                                           : folder;
}

CloudStorageProvider providerInfo(const std::string& folder) {
    const std::string_view name = platform::lastPathComponent(folder);
    const std::size_t dash = name.find('-');
    const std::string_view brand = name.substr(0, dash);
    CloudStorageProvider provider{folder, prettyBrandName(brand), std::nullopt, folder, {}};
    if (dash != std::string_view::npos && dash + 1 < name.size())
        provider.detail = std::string(name.substr(dash + 1));
    if (text::equalsIgnoringCase(brand, "GoogleDrive")) provider.path = googleDriveActivePath(folder);
    return provider;
}

std::string prettyBrandName(std::string_view brand) {
    const std::string lowered = text::lowercased(brand);
    if (lowered == "googledrive") return "Google Drive";
    if (lowered == "pclouddrive") return "pCloud";
    if (lowered == "nutstore") return "坚果云";
    return std::string(brand);
}

std::string googleDriveActivePath(const std::string& root) {
    traceHang(fmt::format("googleDriveActiveURL enumerate {}", platform::lastPathComponent(root)));
    for (const std::string_view name : driveNames) {
        const std::string path = platform::joinPath(root, name);
        if (platform::isDirectory(path)) return path;
    }
    const auto entries = platform::listDirectory(root, platform::HiddenEntries::skip);
    if (!entries) return root;
    for (const platform::DirectoryEntry& entry : *entries) {
        // A disk may keep the accents of a name apart from their letters.
        const std::string name = text::canonicallyComposed(entry.name);
        const bool isForeign =
            std::find(foreignDriveNames.begin(), foreignDriveNames.end(), name) != foreignDriveNames.end();
        if (entry.kind == platform::EntryKind::directory && !isForeign)
            return platform::joinPath(root, entry.name);
    }
    return root;
}

std::vector<CloudStorageProvider> detectRemovableVolumes(const platform::Platform& platform) {
    traceHang("detectRemovableVolumes begin");
    std::vector<CloudStorageProvider> found;
    if (const auto volumes = platform.mountedVolumes()) {
        for (const platform::Volume& volume : *volumes) {
            if (!volume.browsable.value_or(false) || volume.internal.value_or(true)) continue;
            const std::string name =
                volume.name.empty() ? std::string(platform::lastPathComponent(volume.path)) : volume.name;
            found.push_back({volume.path, name, "U 盘 / 外置盘", volume.path, "externaldrive.fill"});
        }
    }
    traceHang("detectRemovableVolumes end");
    return found;
}

} // namespace corvane
