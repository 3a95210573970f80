#include "archive/destination/archived_file.h"

#include <cerrno>
#include <utility>

#include "archive/destination/durable_write.h"
#include "archive/largest_mail.h"
#include "platform/files/cloud_placeholder.h"
#include "platform/files/layers/folder_file_layer.h"
#include "platform/files/layers/layer_reading.h"
#include "platform/paths.h"
#include "text/case.h"

namespace corvane::archive {

namespace {

using platform::FolderFileLayer;
using State = ArchivedFile::State;

// After a look that found nothing of this name; a placeholder may stand for it.
State stateWithoutFile(FolderFileLayer& folder, const std::string& name) {
    if (!saysGone(errno)) return State::couldNotLook;
    struct stat status{};
    if (folder.stat(platform::cloudPlaceholderPath(name), status) == 0) return State::couldNotLook;
    return saysGone(errno) ? State::gone : State::couldNotLook;
}

void readContent(FolderFileLayer& folder, platform::JobLimit& limit, const std::string& name,
                 ArchivedFile& file) {
    std::string bytes;
    const auto onPiece = [&](std::string_view piece) {
        limit.restart();
        bytes += piece;
        return static_cast<std::int64_t>(bytes.size()) <= largestMailBytes;
    };
    if (!readUncached(folder, name, BeforeReading::nothing, onPiece, &file.stamp)) return;
    if (static_cast<std::int64_t>(bytes.size()) != file.stamp.sizeBytes) return;
    file.hash = platform::sha256(bytes);
    file.bytes = std::make_shared<const std::string>(std::move(bytes));
    file.state = State::read;
}

void readIn(FolderFileLayer& folder, platform::JobLimit& limit, const std::string& name,
            std::int64_t sizeBytes, ArchivedFile& file) {
    struct stat status{};
    if (folder.stat(name, status) != 0) {
        file.state = stateWithoutFile(folder, name);
    } else if (!S_ISREG(status.st_mode)) {
        file.state = State::gone;
    } else if (status.st_size != sizeBytes) {
        file.state = State::otherSize;
    } else if (sizeBytes <= largestMailBytes) {
        readContent(folder, limit, name, file);
    }
}

} // namespace

bool saysGone(int error) {
    return platform::saysAbsent(error) || error == ELOOP || error == ENAMETOOLONG;
}

bool isPlaceOfMail(std::string_view relativePath) {
    return platform::isSafeRelativePath(relativePath) &&
           text::asciiLowercased(platform::pathExtension(relativePath)) == "eml";
}

ArchivedFile readArchivedFile(platform::FileLayer& files, const ArchiveFolders& folders,
                              platform::JobLimit& limit, const std::string& relativePath,
                              std::int64_t sizeBytes) {
    ArchivedFile file;
    if (!platform::isSafeRelativePath(relativePath)) {
        file.state = State::gone;
        return file;
    }
    limit.restart();
    file.folder.relativePath = platform::parentPath(relativePath);
    const auto descriptor = folders.open(files, file.folder.relativePath);
    struct stat status{};
    if (!descriptor || files.statOpen(descriptor.get(), status) != 0) {
        if (saysGone(errno)) file.state = State::gone;
        return file;
    }
    file.folder.identity = platform::FileIdentity::of(status);
    FolderFileLayer folder(files, descriptor.get());
    readIn(folder, limit, std::string(platform::lastPathComponent(relativePath)), sizeBytes, file);
    return file;
}

} // namespace corvane::archive
