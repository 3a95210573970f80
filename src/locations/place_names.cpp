#include "locations/place_names.h"

#include <optional>

#include <fmt/format.h>

#include "locations/places/cloud_providers.h"
#include "platform/paths.h"

namespace corvane {

namespace {

std::optional<std::string> removableDiskName(const platform::Platform& platform, const std::string& path) {
    const auto mountPoint = platform.removableMountPoint(path);
    if (!mountPoint) return std::nullopt;
    return fmt::format("U 盘 · {}", platform::lastPathComponent(*mountPoint));
}

} // namespace

std::string locationDisplayName(const platform::Platform& platform, const std::string& rootPath) {
    if (auto disk = removableDiskName(platform, rootPath)) return *std::move(disk);
    const std::string_view name = platform::lastPathComponent(rootPath);
    const auto provider = cloudProviderName(rootPath);
    if (!provider) return std::string(name);
    return name.empty() ? *provider : fmt::format("{} · {}", *provider, name);
}

std::string listedLocationName(const ArchiveLocation* listed, std::string_view rootPath) {
    return listed == nullptr ? std::string(platform::lastPathComponent(rootPath)) : listed->displayName;
}

std::string mailLocationName(const ArchiveLocation* listed, std::string_view rootPath) {
    auto provider = cloudProviderName(rootPath);
    return provider ? *std::move(provider) : listedLocationName(listed, rootPath);
}

std::string destinationDisplayName(const platform::Platform& platform, const std::string& path) {
    if (path.find(iCloudFolderName) != std::string::npos) return iCloudName;
    if (auto disk = removableDiskName(platform, path)) return *std::move(disk);
    return std::string(platform::lastPathComponent(path));
}

} // namespace corvane
