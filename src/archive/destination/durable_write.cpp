#include "archive/destination/durable_write.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>

#include "archive/archive_error.h"
#include "archive/destination/archive_modes.h"
#include "platform/files/layers/layer_descriptor.h"
#include "platform/files/layers/layer_reading.h"
#include "platform/files/writing/storage_flush.h"
#include "records/logs/console_log.h"

namespace corvane::archive {

namespace {

using platform::FileIdentity;
using platform::LayerDescriptor;

// The log tells the step, the user's text no more than what the user can do something about.
[[noreturn]] void failWrite(const char* step, const std::string& path, int error) {
    consoleLine(fmt::format("[archive] {} {}: {}", step, path, std::generic_category().message(error)));
    throw ArchiveError(ArchiveError::Case::writeFailed, error);
}

// Where the pieces of a file differ from the bytes that it should hold.
class Comparison {
  public:
    explicit Comparison(std::string_view expected)
      : rest_(expected) {}

    bool add(std::string_view piece) {
        const std::string_view expected = rest_.substr(0, piece.size());
        rest_.remove_prefix(expected.size());
        if (piece == expected) return true;
        isSame_ = false;
        isPart_ =
            piece.size() == expected.size() &&
            std::ranges::equal(piece, expected, [](char got, char due) { return got == due || got == 0; });
        return isPart_;
    }

    [[nodiscard]] DiskContent result() const {
        if (isSame_ && rest_.empty()) return DiskContent::same;
        return isPart_ ? DiskContent::unfinished : DiskContent::other;
    }

  private:
    std::string_view rest_;
    bool isSame_ = true;
    bool isPart_ = true;
};

// The step at which the write failed, null when it didn't; errno is that of the failure.
const char* failedStep(platform::FileLayer& files, int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = files.write(file, bytes.data(), bytes.size());
        if (written < 1) return "write";
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return files.sync(file) == 0 ? nullptr : "fsync";
}

} // namespace

FileIdentity writePOSIXBlocking(platform::FileLayer& files, std::string_view bytes, const std::string& path) {
    // Exclusively: a write that hung and comes back late must not cut a file that was proved meanwhile.
    LayerDescriptor file(files, files.open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mostOfFile));
    if (!file) failWrite("open", path, errno);
    struct stat status{};
    // Without its identity nobody could tell it from another file later, so it isn't removed either.
    if (files.statOpen(file.get(), status) != 0) failWrite("stat", path, errno);
    const char* const step = failedStep(files, file.get(), bytes);
    const int error = errno;
    // Anew: FAT on a Mac numbers a file by where its bytes lie, and all empty ones alike.
    files.statOpen(file.get(), status);
    const auto identity = FileIdentity::of(status);
    if (step != nullptr) {
        file.reset();
        removeFile(files, path, identity);
        failWrite(step, path, error);
    }
    return identity;
}

void removeFile(platform::FileLayer& files, const std::string& path, const FileIdentity& file) {
    struct stat status{};
    if (files.stat(path, status) == 0 && FileIdentity::of(status) == file) files.unlink(path);
}

bool readUncached(platform::FileLayer& files, const std::string& path, BeforeReading before,
                  const std::function<bool(std::string_view)>& onPiece, FileStamp* stamp) {
    struct stat status{};
    const auto file = platform::openRegularFile(files, path, platform::FinalLink::refuse, status);
    if (!file) return false;
    if (before == BeforeReading::flush && files.sync(file.get()) != 0) return false;
    files.bypassCache(file.get());
    if (stamp != nullptr) *stamp = stampOf(status);
    const auto size = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0));
    errno = platform::readPieces(files, file.get(), size, onPiece);
    return errno == 0;
}

DiskReading contentOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path,
                          BeforeReading before, const std::function<void()>& onProgress) {
    Comparison comparison(bytes);
    FileStamp stamp;
    const auto onPiece = [&](std::string_view piece) {
        if (onProgress) onProgress();
        return comparison.add(piece);
    };
    if (!readUncached(files, path, before, onPiece, &stamp)) return {};
    const DiskContent content = comparison.result();
    return {.content = content, .stamp = content == DiskContent::same ? stamp : FileStamp()};
}

bool verifyOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path,
                  const std::function<void()>& onProgress) {
    return contentOnDisk(files, bytes, path, BeforeReading::nothing, onProgress).content == DiskContent::same;
}

void syncDirectories(platform::FileLayer& files, const std::set<std::string>& paths,
                     const std::function<void()>& onProgress) {
    for (const std::string& path : paths) {
        if (onProgress) onProgress();
        const LayerDescriptor file(files, files.open(path, O_RDONLY | O_NONBLOCK, 0));
        if (file) syncDirectory(files, file.get());
    }
}

int syncDirectory(platform::FileLayer& files, int folder) {
    if (files.fullSync(folder) == 0) return 0;
    const int error = errno;
    const int weaker = files.sync(folder) == 0 ? 0 : errno;
    // A device's failure is told once: what comes after it succeeds without having stored anything.
    return error == EIO ? error : weaker;
}

bool staysInCache(platform::FileLayer& files, int folder, const std::string& relativePath) {
    const LayerDescriptor file(files,
                               files.openAt(folder, relativePath, O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0));
    if (!file) return false;
    files.bypassCache(file.get());
    return platform::holdsCachedPages(file.get()).value_or(false);
}

} // namespace corvane::archive
