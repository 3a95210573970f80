#include "archive/export/folder_target.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include "archive/destination/durable_write.h"
#include "platform/files/writing/durable_file.h"
#include "platform/files/writing/leftovers.h"
#include "platform/paths.h"

namespace corvane::archive {

namespace {

void makeFolder(platform::FileLayer& files, const std::string& path) {
    if (const auto error = platform::createDirectories(files, path)) throw std::system_error(error, path);
}

} // namespace

FolderTarget::FolderTarget(platform::FileLayer& files, std::string folder)
  : files_(files)
  , folder_(std::move(folder)) {
    makeFolder(files_, folder_);
}

bool FolderTarget::begin(const ExportedMail& mail) {
    while (true) {
        const std::string path = platform::joinPath(folder_, names_.next(mail.record));
        const std::string year(platform::parentPath(path));
        if (folders_.insert(year).second) beginFolder(year);
        try {
            file_.emplace(files_, path);
            return true;
        } catch (const std::system_error& error) {
            if (error.code().value() != EEXIST) throw;
        }
        if (holds(path, mail)) return false;
    }
}

void FolderTarget::beginFolder(const std::string& folder) {
    makeFolder(files_, folder);
    platform::removeUnfinishedFiles(folder);
}

bool FolderTarget::holds(const std::string& path, const ExportedMail& mail) {
    std::int64_t bytes = 0;
    platform::Sha256 hash;
    const auto onPiece = [&](std::string_view piece) {
        bytes += std::ssize(piece);
        hash.update(piece);
        return bytes <= mail.bytes;
    };
    return readUncached(files_, path, BeforeReading::flush, onPiece) && bytes == mail.bytes &&
           hash.digest() == mail.hash;
}

void FolderTarget::end() {
    file_->flush();
    file_->finish();
    file_.reset();
}

void FolderTarget::finish() {
    folders_.insert(folder_);
    syncDirectories(files_, folders_);
}

} // namespace corvane::archive
