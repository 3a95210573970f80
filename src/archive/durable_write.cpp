#include "archive/durable_write.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>

#include "archive/archive_error.h"
#include "records/logs/console_log.h"

namespace corvane::archive {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;

// Closes a descriptor of a file layer.
class OpenFile {
  public:
    OpenFile(platform::FileLayer& files, const std::string& path, int flags)
      : files_(files)
      , descriptor_(files.open(path, flags, 0644)) {}

    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    ~OpenFile() {
        if (descriptor_ >= 0) files_.close(descriptor_);
    }

    [[nodiscard]] int get() const noexcept { return descriptor_; }

    explicit operator bool() const noexcept { return descriptor_ >= 0; }

  private:
    platform::FileLayer& files_;
    int descriptor_;
};

// The user's text names no cause, the log does.
[[noreturn]] void failWrite(const char* step, const std::string& path) {
    consoleLine(fmt::format("[archive] {} {}: {}", step, path, std::generic_category().message(errno)));
    throw ArchiveError(ArchiveError::Case::writeFailed);
}

// Where the pieces of a file differ from the bytes that it should hold.
class Comparison {
  public:
    explicit Comparison(std::string_view expected)
      : rest_(expected) {}

    bool take(std::string_view piece) {
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

} // namespace

void writePOSIXBlocking(platform::FileLayer& files, std::string_view bytes, const std::string& path) {
    // Exclusively: a write that hung and comes back late must not cut a file that was proved meanwhile.
    const OpenFile file(files, path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (!file) failWrite("open", path);
    while (!bytes.empty()) {
        const ssize_t written = files.write(file.get(), bytes.data(), bytes.size());
        if (written < 1) failWrite("write", path);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    if (files.sync(file.get()) != 0) failWrite("fsync", path);
}

bool readUncached(platform::FileLayer& files, const std::string& path, BeforeReading before,
                  const std::function<bool(std::string_view)>& take) {
    struct stat status{};
    if (files.stat(path, status) != 0 || !S_ISREG(status.st_mode)) return false;
    const OpenFile file(files, path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (!file) return false;
    if (before == BeforeReading::flush && files.sync(file.get()) != 0) return false;
    files.bypassCache(file.get());
    // Room for one byte more than the file has, so that a file of one piece is read in one go.
    const auto room = std::min(pieceBytes, static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1);
    const auto buffer = std::make_unique_for_overwrite<char[]>(room);
    while (true) {
        const ssize_t got = files.read(file.get(), buffer.get(), room);
        if (got <= 0) return got == 0;
        if (!take({buffer.get(), static_cast<std::size_t>(got)})) return true;
    }
}

DiskContent contentOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path,
                          BeforeReading before, const std::function<void()>& onProgress) {
    Comparison comparison(bytes);
    const bool wasRead = readUncached(files, path, before, [&](std::string_view piece) {
        if (onProgress) onProgress();
        return comparison.take(piece);
    });
    return wasRead ? comparison.result() : DiskContent::unreadable;
}

bool verifyOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path,
                  const std::function<void()>& onProgress) {
    return contentOnDisk(files, bytes, path, BeforeReading::nothing, onProgress) == DiskContent::same;
}

void syncDirectories(platform::FileLayer& files, const std::set<std::string>& paths,
                     const std::function<void()>& onProgress) {
    for (const std::string& path : paths) {
        if (onProgress) onProgress();
        const OpenFile file(files, path, O_RDONLY | O_NONBLOCK);
        if (file && files.fullSync(file.get()) != 0) files.sync(file.get());
    }
}

} // namespace corvane::archive
