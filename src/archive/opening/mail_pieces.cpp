#include "archive/opening/mail_pieces.h"

#include <cerrno>
#include <memory>
#include <new>
#include <utility>

#include "archive/archive_error.h"
#include "archive/opening/archived_cloud_file_opener.h"
#include "platform/files/layers/layer_descriptor.h"
#include "platform/files/layers/layer_reading.h"

namespace corvane::archive {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;

} // namespace

// What a job owns: it may come back when nobody waits any more.
struct MailPieces::Reading {
    platform::FileLayer& files;
    std::string path;
    platform::LayerDescriptor file{};
    std::string piece{};
    int error = 0;
    bool isAtEnd = false;

    // Fills the piece, or reaches the end.
    void go() {
        struct stat status{};
        if (!file) file = platform::openRegularFile(files, path, platform::FinalLink::refuse, status);
        error = file ? 0 : errno;
        piece.resize(pieceBytes);
        std::size_t count = 0;
        while (error == 0 && !isAtEnd && count < pieceBytes) {
            const ssize_t got = files.read(file.get(), piece.data() + count, pieceBytes - count);
            if (got < 0 && errno != EINTR) error = errno;
            if (got > 0) count += static_cast<std::size_t>(got);
            isAtEnd = got == 0;
        }
        piece.resize(count);
    }
};

MailPieces::MailPieces(platform::FileLayer& files, std::stop_token stop, std::chrono::nanoseconds limit)
  : files_(files)
  , stop_(std::move(stop))
  , limit_(limit) {}

void MailPieces::read(const std::string& path, const std::function<void(std::string_view)>& onPiece) {
    const auto reading = std::make_shared<Reading>(files_, path);
    while (!reading->isAtEnd) {
        const auto job = [reading](platform::JobLimit&) {
            try {
                reading->go();
            } catch (const std::bad_alloc&) {
                reading->error = ENOMEM;
            }
        };
        const bool hasEnded = worker_.run(limit_, job, stop_);
        if (stop_.stop_requested()) throw OpeningCancelled();
        if (!hasEnded) throw ArchiveAccessError("无法读取归档邮件", path, ETIMEDOUT);
        if (reading->error != 0) throw ArchiveAccessError("无法读取归档邮件", path, reading->error);
        onPiece(reading->piece);
    }
}

} // namespace corvane::archive
