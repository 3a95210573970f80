#include "search/search_index_files.h"

#include <array>
#include <set>
#include <system_error>

#include <fmt/format.h>

#include "platform/files/directory.h"
#include "platform/paths.h"
#include "records/stable_hash.h"

namespace corvane::search {

namespace {

constexpr std::string_view prefix = "search-";
constexpr std::string_view extension = ".sqlite";

std::string fileNameOfKey(std::string_view key) {
    return fmt::format("{}{}{}", prefix, key, extension);
}

// The side files go first: were the database itself moved and the move interrupted there, what its log holds
// would be lost.
void migrateLegacyTrailingSlashIndex(const CorvaneAppSupport& support, std::string_view archiveRoot,
                                     const std::string& newPath) {
    if (platform::fileExists(newPath)) return;
    const std::string legacyKey = stableHash(normalizedKeyPath(archiveRoot) + "/");
    const std::string legacyPath = support.filePath(fileNameOfKey(legacyKey));
    if (legacyPath == newPath || !platform::fileExists(legacyPath)) return;
    for (const char* suffix : {"-wal", "-shm", ""}) {
        if (platform::fileExists(legacyPath + suffix) && !platform::fileExists(newPath + suffix))
            support.files().rename(legacyPath + suffix, newPath + suffix);
    }
}

} // namespace

std::string normalizedKeyPath(std::string_view archiveRoot) {
    std::string path = platform::standardizedPath(archiveRoot);
    if (path.size() >= 2 && path.ends_with('/')) path.pop_back();
    return path;
}

std::string databaseFileName(std::string_view archiveRoot) {
    return fileNameOfKey(stableHash(normalizedKeyPath(archiveRoot)));
}

std::optional<FileURL> databaseURL(const CorvaneAppSupport& support, std::string_view archiveRoot) {
    try {
        support.baseDirectory(true);
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    const std::string path = support.filePath(databaseFileName(archiveRoot));
    migrateLegacyTrailingSlashIndex(support, archiveRoot, path);
    return FileURL(path);
}

void pruneOrphans(const CorvaneAppSupport& support, std::span<const std::string> liveRoots) {
    std::set<std::string, std::less<>> live;
    for (const std::string& root : liveRoots) live.insert(databaseFileName(root));
    const auto entries =
        platform::listDirectory(support.baseDirectory(false), platform::HiddenEntries::include);
    if (!entries) return;
    for (const platform::DirectoryEntry& entry : *entries) {
        const auto end = entry.name.find(extension);
        if (!entry.name.starts_with(prefix) || end == std::string::npos) continue;
        const std::string_view database = std::string_view(entry.name).substr(0, end + extension.size());
        if (!live.contains(database)) support.files().unlink(support.filePath(entry.name));
    }
}

} // namespace corvane::search
