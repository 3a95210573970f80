#include "archive/opening/cloud_file.h"

#include <filesystem>
#include <system_error>

#include "archive/archive_root.h"
#include "platform/files/cloud_placeholder.h"
#include "platform/files/file_look.h"
#include "platform/paths.h"
#include "text/case.h"

namespace corvane::archive {

namespace {

using Presence = platform::FileLook::Presence;

Presence presenceOf(const std::string& path) {
    return platform::lookAtFile(path).presence;
}

bool isRegularFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(std::filesystem::symlink_status(path, error));
}

} // namespace

CloudFileState cloudFileState(const platform::Platform& platform, const std::string& path) {
    Presence file = presenceOf(path);
    if (file == Presence::absent) {
        const Presence placeholder = presenceOf(platform::cloudPlaceholderPath(path));
        if (placeholder == Presence::there) return CloudFileState::inCloud;
        if (placeholder == Presence::unknown) return CloudFileState::unknown;
        // The file may have taken its placeholder's place between the looks.
        file = presenceOf(path);
    }
    if (file == Presence::absent) return CloudFileState::gone;
    if (file == Presence::unknown) return CloudFileState::unknown;
    return platform.isCloudPlaceholder(path) ? CloudFileState::inCloud : CloudFileState::available;
}

CloudFileState archivedFileState(const platform::Platform& platform, const std::string& root,
                                 std::string_view relativePath) {
    const bool isMail = text::asciiLowercased(platform::pathExtension(relativePath)) == "eml";
    if (!isMail || !platform::isSafeRelativePath(relativePath)) return CloudFileState::gone;
    if (presenceOf(root) != Presence::there) return CloudFileState::unknown;
    ArchiveRoot archive(root);
    const std::string path = archive.at(relativePath);
    const std::string folder(platform::parentPath(path));
    const Presence folderPresence = presenceOf(folder);
    if (folderPresence == Presence::unknown) return CloudFileState::unknown;
    if (folderPresence == Presence::absent || !archive.holdsFolder(folder)) return CloudFileState::gone;
    const CloudFileState state = cloudFileState(platform, path);
    const bool isOther = state == CloudFileState::available && !isRegularFile(path);
    return isOther ? CloudFileState::gone : state;
}

} // namespace corvane::archive
