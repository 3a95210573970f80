#include "archive/export/new_file.h"

#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include "archive/destination/durable_write.h"
#include "platform/files/writing/durable_file.h"
#include "platform/files/writing/file_claim.h"
#include "platform/paths.h"

namespace corvane::archive {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;

// One flush at the end of a long file could take longer than anybody waits for one step.
constexpr std::size_t mostUnsyncedBytes = std::size_t{16} << 20;

constexpr int newFileFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;

[[noreturn]] void fail(int error, const std::string& path) {
    throw std::system_error(error, std::generic_category(), path);
}

} // namespace

NewFile::NewFile(platform::FileLayer& files, std::string path)
  : files_(files)
  , path_(std::move(path)) {
    struct stat status{};
    if (files_.stat(path_, status) == 0) fail(EEXIST, path_);
    if (errno != ENOENT) fail(errno, path_);
    for (int tries = 0; tries < platform::claimTries; ++tries) {
        make();
        if (platform::claimFile(file_.get()) != platform::FileClaim::refused) return;
        files_.unlink(unfinished_);
    }
    fail(EBUSY, path_);
}

void NewFile::make() {
    unfinished_ = platform::temporarySiblingPath(path_);
    file_ = {files_, files_.open(unfinished_, newFileFlags, platform::privateFileMode)};
    if (!file_) fail(errno, path_);
}

NewFile::~NewFile() {
    if (isFinished_) return;
    file_.reset();
    files_.unlink(unfinished_);
}

void NewFile::write(std::string_view bytes) {
    buffer_ += bytes;
    if (buffer_.size() >= pieceBytes) writeBuffer();
}

void NewFile::writeBuffer() {
    std::string_view rest = buffer_;
    hash_.update(rest);
    while (!rest.empty()) {
        const ssize_t written = files_.write(file_.get(), rest.data(), rest.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 1) fail(written < 0 ? errno : EIO, path_);
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    unsyncedBytes_ += buffer_.size();
    buffer_.clear();
    if (unsyncedBytes_ >= mostUnsyncedBytes) sync();
}

void NewFile::sync() {
    if (files_.sync(file_.get()) != 0) fail(errno, path_);
    unsyncedBytes_ = 0;
}

void NewFile::flush() {
    writeBuffer();
    sync();
    platform::Sha256 hash;
    const auto onPiece = [&](std::string_view piece) {
        hash.update(piece);
        return true;
    };
    if (!readUncached(files_, unfinished_, BeforeReading::nothing, onPiece)) fail(errno, path_);
    if (hash.digest() != hash_.digest()) fail(EIO, path_);
}

// An empty file keeps the name free of others for the moment.
void NewFile::finish() {
    if (!platform::LayerDescriptor(files_, files_.open(path_, newFileFlags, platform::privateFileMode)))
        fail(errno, path_);
    if (files_.rename(unfinished_, path_) != 0) {
        const int error = errno;
        files_.unlink(path_);
        fail(error, path_);
    }
    isFinished_ = true;
}

void NewFile::syncFolder() {
    syncDirectories(files_, {std::string(platform::parentPath(path_))});
}

} // namespace corvane::archive
