// Which cloud provider a path belongs to, by its text alone. Thread-safe; nothing here touches the disk.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

inline constexpr const char* iCloudName = "iCloud 云盘";

// The folder's name, by which a path in it is known.
inline constexpr std::string_view iCloudFolderName = "com~apple~CloudDocs";

// The provider's name as shown; absent for a path of none.
std::optional<std::string> cloudProviderName(std::string_view path);

// The same from the folder's name behind "/Library/CloudStorage/" alone.
std::optional<std::string> cloudStorageFolderProviderName(std::string_view path);

// Whether the path lies where macOS keeps its own and other providers' folders, in anybody's home.
bool isInCloudFolder(std::string_view path);

} // namespace corvane
