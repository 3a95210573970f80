#include "archive/export/new_file.h"

#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

#include <fcntl.h>

#include "archive/destination/durable_write.h"
#include "platform/files/writing/durable_file.h"

namespace corvane::archive {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;
constexpr int newFileFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;

[[noreturn]] void fail(int error, const std::string& path) {
    throw std::system_error(error, std::generic_category(), path);
}

} // namespace

NewFile::NewFile(platform::FileLayer& files, std::string path)
  : files_(files)
  , path_(std::move(path))
  , unfinished_(platform::temporarySiblingPath(path_)) {
    if (!platform::LayerDescriptor(files_, files_.open(path_, newFileFlags, platform::privateFileMode)))
        fail(errno, path_);
    file_ = {files_, files_.open(unfinished_, newFileFlags, platform::privateFileMode)};
    if (file_) return;
    const int error = errno;
    files_.unlink(path_);
    fail(error, path_);
}

NewFile::~NewFile() {
    if (isFinished_) return;
    file_.reset();
    files_.unlink(unfinished_);
    files_.unlink(path_);
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
    buffer_.clear();
}

void NewFile::flush() {
    writeBuffer();
    if (files_.sync(file_.get()) != 0) fail(errno, path_);
    file_.reset();
    platform::Sha256 hash;
    const auto take = [&](std::string_view piece) {
        hash.update(piece);
        return true;
    };
    if (!readUncached(files_, unfinished_, BeforeReading::nothing, take)) fail(errno, path_);
    if (hash.digest() != hash_.digest()) fail(EIO, path_);
}

void NewFile::finish() {
    if (files_.rename(unfinished_, path_) != 0) fail(errno, path_);
    isFinished_ = true;
}

} // namespace corvane::archive
