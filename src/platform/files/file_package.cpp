#include "platform/files/file_package.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane::platform {

namespace {

// Of macOS's bundles, old and new, and of Linux's AppDir.
constexpr std::array<std::string_view, 4> packageEntries = {"Contents", "Info.plist", "Wrapper", "AppRun"};

} // namespace

bool isPlainFolder(const std::string& path) {
    if (!isDirectory(path) || !pathExtension(path).empty()) return false;
    bool isPackage = false;
    const bool wasListed = visitDirectory(path, [&](std::string_view name, unsigned char) {
        isPackage = isPackage || std::ranges::find(packageEntries, name) != packageEntries.end();
    });
    return wasListed && !isPackage;
}

} // namespace corvane::platform
