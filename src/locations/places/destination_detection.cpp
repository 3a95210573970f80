#include "locations/places/destination_detection.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <fmt/format.h>
#include <sys/stat.h>

#include "locations/places/cloud_providers.h"
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

std::string_view brandOf(std::string_view folder) {
    const std::string_view name = platform::lastPathComponent(folder);
    return name.substr(0, name.find('-'));
}

// Without a look into the folder.
CloudStorageProvider namedProvider(const std::string& folder) {
    const std::string_view brand = brandOf(folder);
    CloudStorageProvider provider{folder, prettyBrandName(brand), std::nullopt, folder, {}};
    const std::string_view rest = platform::lastPathComponent(folder).substr(brand.size());
    if (rest.size() > 1) provider.detail = std::string(rest.substr(1));
    return provider;
}

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

std::string iCloudFolder(const platform::Platform& platform) {
    const std::string containers =
        platform::joinPath(platform.realUserHomeDirectory(), "Library/Mobile Documents");
    return platform::joinPath(containers, iCloudFolderName);
}

std::vector<CloudStorageProvider> detectCloudStorage(PlaceLooks& looks, const platform::Platform& platform) {
    traceHang("detect begin");
    std::vector<CloudStorageProvider> found;
    const std::string home = platform.realUserHomeDirectory();
    const std::string iCloud = iCloudFolder(platform);
    traceHang("detect stat iCloud");
    const auto isThere = looks.ask<bool>(iCloud, [iCloud](PlaceLook& look) {
        struct stat status{};
        return look.files().stat(iCloud, status) == 0 && S_ISDIR(status.st_mode);
    });
    if (isThere.value_or(true))
        found.push_back({iCloud, iCloudName, std::nullopt, iCloud, "icloud.fill", isThere.has_value()});
    const std::vector<std::string> folders =
        looks
            .ask<std::vector<std::string>>(platform::joinPath(home, "Library/CloudStorage"),
                                           [&platform](PlaceLook&) { return cloudStorageFolders(platform); })
            .value_or(std::vector<std::string>());
    const auto answers = looks.askAll<std::string>(
        folders, [](PlaceLook&, const std::string& folder) { return cloudStorageContent(folder); });
    for (std::size_t i = 0; i < folders.size(); ++i) {
        found.push_back(namedProvider(folders[i]));
        found.back().icon = "cloud.fill";
        found.back().hasAnswered = answers[i].has_value();
        if (answers[i]) found.back().path = *answers[i];
    }
    traceHang(fmt::format("detect done count={}", found.size()));
    return found;
}

std::string cloudStorageContent(const std::string& folder) {
    return platform::parentPath(folder).ends_with("/Library/CloudStorage") ? providerInfo(folder).path
                                                                           : folder;
}

CloudStorageProvider providerInfo(const std::string& folder) {
    CloudStorageProvider provider = namedProvider(folder);
    if (text::equalsIgnoringCase(brandOf(folder), "GoogleDrive"))
        provider.path = googleDriveActivePath(folder);
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
