#include "archive/durable_write.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <fcntl.h>

#include "archive/archive_error.h"

namespace corvane::archive {

namespace {

// An open file of a file layer.
class OpenFile {
  public:
    OpenFile(platform::FileLayer& files, const std::string& path, int flags)
      : files_(files)
      , descriptor_(files.open(path, flags | O_CLOEXEC, 0644)) {}

    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    ~OpenFile() {
        if (descriptor_ >= 0) files_.close(descriptor_);
    }

    explicit operator bool() const { return descriptor_ >= 0; }

    [[nodiscard]] int get() const { return descriptor_; }

    // The result of the close, which some network file systems use to tell of a failed write.
    bool close() { return files_.close(std::exchange(descriptor_, -1)) == 0; }

  private:
    platform::FileLayer& files_;
    int descriptor_;
};

constexpr std::size_t compareChunk = std::size_t{1} << 18;

} // namespace

void writePOSIXBlocking(platform::FileLayer& files, std::string_view bytes, const std::string& path) {
    OpenFile file(files, path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    if (!file) throw ArchiveError(ArchiveError::Kind::writeFailed);
    while (!bytes.empty()) {
        const ssize_t written = files.write(file.get(), bytes.data(), bytes.size());
        if (written < 1) throw ArchiveError(ArchiveError::Kind::writeFailed);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    if (files.sync(file.get()) != 0 || !file.close()) throw ArchiveError(ArchiveError::Kind::writeFailed);
}

bool verifyOnDisk(platform::FileLayer& files, std::string_view bytes, const std::string& path) {
    const OpenFile file(files, path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (!file) return false;
    files.bypassCache(file.get());
    // In chunks, so that a message of gigabytes isn't held twice; one byte more than is left, to see a longer
    // file.
    std::vector<char> buffer(std::min(compareChunk, bytes.size() + 1));
    while (true) {
        const ssize_t count =
            files.read(file.get(), buffer.data(), std::min(buffer.size(), bytes.size() + 1));
        if (count < 0 || static_cast<std::size_t>(count) > bytes.size()) return false;
        if (count == 0) return bytes.empty();
        if (std::memcmp(buffer.data(), bytes.data(), static_cast<std::size_t>(count)) != 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void syncDirectories(platform::FileLayer& files, const std::set<std::string>& paths) {
    for (const std::string& path : paths) {
        const OpenFile file(files, path, O_RDONLY);
        if (file && files.fullSync(file.get()) != 0) files.sync(file.get());
    }
}

bool syncFile(platform::FileLayer& files, const std::string& path) {
    const OpenFile file(files, path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    return file && files.sync(file.get()) == 0;
}

} // namespace corvane::archive
