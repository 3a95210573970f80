#include "locations/places/destination_rules.h"

#include <fmt/format.h>

#include "platform/files/directory.h"
#include "platform/files/file_look.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"

namespace corvane {

namespace {

// With the links resolved of what is there of it.
std::string resolvedSoFar(const std::string& path) {
    std::string above = path;
    std::string rest;
    while (above.size() > 1) {
        if (const auto resolved = platform::resolvedPath(above))
            return rest.empty() ? *resolved : platform::joinPath(*resolved, rest);
        const std::string name(platform::lastPathComponent(above));
        rest = rest.empty() ? name : platform::joinPath(name, rest);
        above = platform::parentPath(above);
    }
    return path;
}

// By what the folders are, too: on a disk that doesn't tell cases apart, or by a second way to the same disk,
// one folder has many names, of which only links can be resolved.
bool liesIn(const std::string& path, const std::string& folder) {
    const std::string resolved = resolvedSoFar(path);
    if (platform::isAtOrBelow(resolved, resolvedSoFar(folder))) return true;
    const platform::FileLook wanted = platform::lookAtFile(folder);
    if (wanted.presence != platform::FileLook::Presence::there) return false;
    for (std::string above = resolved; above.size() > 1; above = platform::parentPath(above)) {
        const platform::FileLook look = platform::lookAtFile(above);
        if (look.presence == platform::FileLook::Presence::there && look.device == wanted.device &&
            look.inode == wanted.inode)
            return true;
    }
    return false;
}

// Of the nearest folder above the path that holds an index; empty without one.
std::string archiveAbove(const std::string& path) {
    for (std::string folder(platform::parentPath(path)); folder.size() > 1;
         folder = platform::parentPath(folder)) {
        const std::string index = platform::joinPath(folder, archiveIndexFileName);
        if (platform::lookAtFile(index).presence == platform::FileLook::Presence::there) return folder;
    }
    return {};
}

} // namespace

std::optional<std::string> refusalInMail(const std::string& path, const std::string& mailRoot) {
    if (mailRoot.empty()) return std::nullopt;
    if (!liesIn(path, mailRoot)) return std::nullopt;
    return fmt::format("“{}”在 Mail 的数据文件夹里，那里从不写入任何东西。请选择别的位置。",
                       platform::lastPathComponent(path));
}

std::optional<std::string> refusalOfArchive(const std::string& path, const std::string& mailRoot,
                                            const std::string& ownFolder) {
    if (auto inMail = refusalInMail(path, mailRoot)) return inMail;
    if (!ownFolder.empty() && liesIn(path, ownFolder))
        return fmt::format("“{}”在 Corvane 自己的数据文件夹里，那里的文件随时可能被重建。请选择别的位置。",
                           platform::lastPathComponent(path));
    const std::string around = archiveAbove(resolvedSoFar(path));
    if (around.empty()) return std::nullopt;
    return fmt::format("“{}”在另一个归档“{}”里面，两个归档不能套在一起。请选择别的位置。",
                       platform::lastPathComponent(path), platform::lastPathComponent(around));
}

std::optional<std::string> refusalOfArchive(PlaceLooks& looks, const std::string& path,
                                            const std::string& mailRoot, const std::string& ownFolder) {
    using Answer = std::optional<std::string>;
    return looks.ask<Answer>(path, [=](PlaceLook&) { return refusalOfArchive(path, mailRoot, ownFolder); })
        .value_or(std::nullopt);
}

} // namespace corvane
