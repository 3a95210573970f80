#include "model/destination_detection.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "model/cloud_providers.h"
#include "platform/directory.h"
#include "platform/paths.h"
#include "records/console_log.h"
#include "text/case.h"
#include "text/collation.h"

namespace corvane {

namespace {

constexpr std::array<std::string_view, 8> ownFilesNames = {"My Drive",     "我的云端硬盘", "Mijn Drive",
                                                           "Mi unidad",    "Mon Drive",    "Drive personale",
                                                           "Meine Ablage", "Il mio Drive"};

constexpr std::array<std::string_view, 7> sharedFilesNames = {
    "其他计算机",      "Other computers",      "Shared drives",      "共享云端硬盘",
    "Drives partagés", "Unidades compartidas", "Outros computadores"};

std::string volumeName(const platform::Volume& volume) {
    return volume.name.empty() ? std::string(platform::lastPathComponent(volume.path)) : volume.name;
}

} // namespace

std::vector<CloudStorageProvider> CloudStorageProvider::detect(const platform::Platform& platform) {
    const std::string home = platform.realUserHomeDirectory();
    std::vector<CloudStorageProvider> providers;
    consoleLine("[HangTrace] detect begin");
    consoleLine("[HangTrace] detect stat iCloud");
    const std::string iCloud = platform::joinPath(home, "Library/Mobile Documents/com~apple~CloudDocs");
    if (platform::isDirectory(iCloud)) {
        providers.push_back({iCloud, "iCloud 云盘", std::nullopt, FileURL(iCloud), "icloud.fill"});
    }
    const std::string parent = platform::joinPath(home, "Library/CloudStorage");
    const auto folders = platform::listDirectory(parent, platform::HiddenEntries::skip);
    for (const auto& folder : folders.value_or(std::vector<platform::DirectoryEntry>())) {
        consoleLine(fmt::format("[HangTrace] detect stat {}", folder.name));
        const std::string path = platform::joinPath(parent, folder.name);
        if (!platform::isDirectory(path)) continue;
        Info info = providerInfo(path);
        providers.push_back(
            {path, std::move(info.name), std::move(info.detail), std::move(info.url), "cloud.fill"});
    }
    consoleLine(fmt::format("[HangTrace] detect done count={}", providers.size()));
    return providers;
}

std::vector<CloudStorageProvider>
CloudStorageProvider::detectRemovableVolumes(const platform::Platform& platform) {
    consoleLine("[HangTrace] detectRemovableVolumes begin");
    std::vector<CloudStorageProvider> found;
    const auto volumes = platform.mountedVolumes();
    for (const platform::Volume& volume : volumes.value_or(std::vector<platform::Volume>())) {
        if (!volume.browsable.value_or(false) || volume.internal.value_or(true)) continue;
        found.push_back(
            {volume.path, volumeName(volume), "U 盘 / 外置盘", FileURL(volume.path), "externaldrive.fill"});
    }
    consoleLine("[HangTrace] detectRemovableVolumes end");
    return found;
}

CloudStorageProvider::Info CloudStorageProvider::providerInfo(const std::string& folder) {
    const std::string_view name = platform::lastPathComponent(folder);
    const std::size_t dash = name.find('-');
    const std::string_view brand = name.substr(0, dash);
    Info info{prettyBrandName(brand), std::nullopt, FileURL(folder)};
    if (dash != std::string_view::npos && dash + 1 < name.size()) info.detail = name.substr(dash + 1);
    if (text::equalsIgnoringCase(brand, "GoogleDrive")) info.url = googleDriveActiveURL(folder);
    return info;
}

std::string CloudStorageProvider::prettyBrandName(std::string_view brand) {
    return text::lowercased(brand) == "nutstore" ? "坚果云" : storageBrandName(brand);
}

FileURL CloudStorageProvider::googleDriveActiveURL(const std::string& root) {
    consoleLine(
        fmt::format("[HangTrace] googleDriveActiveURL enumerate {}", platform::lastPathComponent(root)));
    for (const std::string_view name : ownFilesNames) {
        const std::string path = platform::joinPath(root, name);
        if (platform::isDirectory(path)) return FileURL(path);
    }
    // Hidden folders there are the provider's own.
    const auto entries = platform::listDirectory(root, platform::HiddenEntries::skip);
    for (const auto& entry : entries.value_or(std::vector<platform::DirectoryEntry>())) {
        if (entry.kind != platform::EntryKind::directory) continue;
        const std::string name = text::canonicallyComposed(entry.name);
        if (std::ranges::find(sharedFilesNames, name) != sharedFilesNames.end()) continue;
        return FileURL(platform::joinPath(root, entry.name));
    }
    return FileURL(root);
}

} // namespace corvane
