// Which cloud provider a path belongs to, by its text alone, and the one form of a path that lists compare.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// The provider's name as shown; nothing for a path of none.
std::optional<std::string> cloudProviderName(std::string_view path);

// From the folder's name behind "/Library/CloudStorage/".
std::optional<std::string> cloudStorageFolderProviderName(std::string_view path);

// Standardized, without a closing slash.
std::string canonicalPath(std::string_view path);

// Where the system keeps its own and other providers' folders, in anybody's home.
bool isInCloudFolder(std::string_view path);

} // namespace corvane
