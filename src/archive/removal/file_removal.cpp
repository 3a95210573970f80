#include "archive/removal/file_removal.h"

#include <cerrno>

#include <sys/stat.h>

#include "archive/destination/archived_file.h"
#include "platform/files/cloud_placeholder.h"
#include "platform/files/file_identity.h"
#include "platform/files/layers/layer_reading.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"
#include "text/case.h"
#include "text/charsets/charset.h"
#include "text/collation.h"

namespace corvane::archive {

namespace {

using Outcome = FileRemoval::Outcome;
using platform::FileIdentity;
using platform::FileLayer;

FileRemoval failure(int error) {
    return {Outcome::failed, error};
}

std::string folderOf(const std::string& relativePath) {
    return std::string(platform::parentPath(relativePath));
}

std::string nameOf(const std::string& relativePath) {
    return std::string(platform::lastPathComponent(relativePath));
}

// After a look that found nothing of this name.
FileRemoval withoutFile(FileLayer& files, int folder, const std::string& name) {
    if (!saysGone(errno)) return failure(errno);
    struct stat status{};
    if (files.statAt(folder, platform::cloudPlaceholderPath(name), status) == 0)
        return {Outcome::failed, 0, true};
    return saysGone(errno) ? FileRemoval{Outcome::gone} : failure(errno);
}

// `otherKind` where the folder, or one between it and the root, is an archive of its own: another index names
// what lies there.
FileRemoval lookForOtherArchive(FileLayer& files, const ArchiveFolders& folders,
                                const std::string& relativeFolder) {
    std::string folder;
    for (const std::string& name : componentsOf(relativeFolder)) {
        folder = platform::joinPath(folder, name);
        struct stat status{};
        if (files.statAt(folders.root(), platform::joinPath(folder, archiveIndexFileName), status) == 0)
            return {Outcome::otherKind};
        if (!saysGone(errno)) return failure(errno);
    }
    return {Outcome::gone};
}

// `shared` where the other path leads to this file too, `gone` where it doesn't.
FileRemoval lookAtOther(FileLayer& files, const ArchiveFolders& folders, const std::string& other,
                        const FileIdentity& file) {
    const auto folder = folders.open(files, folderOf(other));
    struct stat status{};
    if (folder && files.statAt(folder.get(), nameOf(other), status) == 0)
        return {FileIdentity::of(status) == file ? Outcome::shared : Outcome::gone};
    return saysGone(errno) ? FileRemoval{Outcome::gone} : failure(errno);
}

// `gone` where no other path leads to this file.
FileRemoval lookAtOthers(FileLayer& files, const ArchiveFolders& folders, const std::string& relativePath,
                         const std::vector<std::string>& others, const FileIdentity& file) {
    const auto components = componentsOf(relativePath);
    for (const std::string& other : others) {
        if (!platform::isSafeRelativePath(other)) continue;
        if (componentsOf(other) == components) return {Outcome::shared};
        const FileRemoval found = lookAtOther(files, folders, other, file);
        if (found.outcome != Outcome::gone) return found;
    }
    return {Outcome::gone};
}

} // namespace

FileRemoval removeArchivedFile(FileLayer& files, const ArchiveFolders& folders,
                               const std::string& relativePath, const std::vector<std::string>& others) {
    if (!isPlaceOfMail(relativePath)) return {Outcome::otherKind};
    const auto folder = folders.open(files, folderOf(relativePath), ArchiveFolders::Links::none);
    if (!folder) {
        if (errno == ELOOP || errno == ENOTDIR) return {Outcome::otherKind};
        return saysGone(errno) ? FileRemoval{Outcome::gone} : failure(errno);
    }
    const FileRemoval around = lookForOtherArchive(files, folders, folderOf(relativePath));
    if (around.outcome != Outcome::gone) return around;
    const std::string name = nameOf(relativePath);
    struct stat status{};
    if (files.statAt(folder.get(), name, status) != 0) return withoutFile(files, folder.get(), name);
    if (!S_ISREG(status.st_mode)) return {Outcome::otherKind};
    const FileRemoval kept = lookAtOthers(files, folders, relativePath, others, FileIdentity::of(status));
    if (kept.outcome != Outcome::gone) return kept;
    if (files.unlinkAt(folder.get(), name) == 0) return {Outcome::removed};
    return platform::saysAbsent(errno) ? FileRemoval{Outcome::gone} : failure(errno);
}

std::string comparableName(const std::string& relativePath) {
    const auto components = componentsOf(relativePath);
    if (components.empty()) return {};
    return text::lowercased(text::canonicallyComposed(text::repairedUtf8(components.back())));
}

} // namespace corvane::archive
