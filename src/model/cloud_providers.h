// What the text of a path tells about the cloud provider that holds it. Never touches a disk; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// Name of the provider for the screens.
std::optional<std::string> cloudProviderName(std::string_view path);

// From the name of the folder under "/Library/CloudStorage/", for providers that nobody listed.
std::optional<std::string> cloudStorageFolderProviderName(std::string_view path);

// The brand as its owner spells it, where the system's folder names spell it otherwise.
std::string storageBrandName(std::string_view brand);

// The form in which roots are compared and kept: absolute, without "." and "..", without a trailing slash.
std::string canonicalPath(std::string_view path);

// Where the system keeps its own and other providers' folders, in anybody's home.
bool isInCloudFolder(std::string_view path);

} // namespace corvane
