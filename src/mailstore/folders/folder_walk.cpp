#include "mailstore/folders/folder_walk.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>

#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane::mailstore {

namespace {

struct Entry {
    std::string name;
    bool isFolder = false;

    friend auto operator<=>(const Entry&, const Entry&) = default;
};

// Some file systems give no kind with the name.
bool isFolder(const std::string& folder, std::string_view name, unsigned char dType) {
    if (dType != DT_UNKNOWN) return dType == DT_DIR;
    struct stat status{};
    return ::lstat(platform::joinPath(folder, name).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isFile(const std::string& path, unsigned char dType) {
    return dType == DT_REG || (dType != DT_FIFO && dType != DT_SOCK && platform::isRegularFile(path));
}

std::optional<std::vector<Entry>> entriesOf(const std::string& folder) {
    std::vector<Entry> entries;
    const bool isListed = platform::visitDirectory(folder, [&](std::string_view name, unsigned char dType) {
        if (name.starts_with('.')) return;
        const bool isSubfolder = isFolder(folder, name, dType);
        if (isSubfolder || isFile(platform::joinPath(folder, name), dType))
            entries.push_back({.name = std::string(name), .isFolder = isSubfolder});
    });
    if (!isListed && entries.empty()) return std::nullopt;
    std::ranges::sort(entries);
    return entries;
}

} // namespace

bool walkFolder(const std::string& root, const FolderWalk& walk) {
    std::vector<std::string> waiting = {root};
    bool isRoot = true;
    while (!waiting.empty()) {
        const std::string folder = std::move(waiting.back());
        waiting.pop_back();
        const auto entries = entriesOf(folder);
        if (!entries && isRoot) return false;
        isRoot = false;
        if (!entries) continue;
        const std::size_t above = waiting.size();
        for (const auto& [name, isSubfolder] : *entries) {
            const std::string path = platform::joinPath(folder, name);
            if (!isSubfolder && !walk.visitsFile(path, name)) return true;
            if (isSubfolder && (!walk.entersFolder || walk.entersFolder(path, name))) waiting.push_back(path);
        }
        // The last one is taken first.
        std::ranges::reverse(waiting.begin() + static_cast<std::ptrdiff_t>(above), waiting.end());
    }
    return true;
}

} // namespace corvane::mailstore
