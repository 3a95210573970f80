#include "platform/files/layers/layer_reading.h"

#include <algorithm>
#include <cerrno>
#include <memory>

#include <fcntl.h>

namespace corvane::platform {

namespace {

constexpr std::size_t pieceBytes = std::size_t{1} << 20;

} // namespace

bool saysAbsent(int errorNumber) noexcept {
    return errorNumber == ENOENT || errorNumber == ENOTDIR;
}

LayerDescriptor openRegularFile(FileLayer& files, const std::string& path, FinalLink link,
                                struct stat& status) {
    // Without O_NONBLOCK the open of a FIFO would wait for a writer.
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | (link == FinalLink::refuse ? O_NOFOLLOW : 0);
    LayerDescriptor file(files, files.open(path, flags, 0));
    if (!file || files.statOpen(file.get(), status) != 0) return {};
    if (S_ISREG(status.st_mode)) return file;
    file.reset();
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return {};
}

int readPieces(FileLayer& files, int descriptor, std::size_t expected,
               const std::function<bool(std::string_view)>& onPiece) {
    // Room for one byte more than expected, so that a file of one piece is read in one go.
    const std::size_t room = std::min(pieceBytes, expected + 1);
    const auto buffer = std::make_unique_for_overwrite<char[]>(room);
    while (true) {
        const ssize_t got = files.read(descriptor, buffer.get(), room);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        if (got == 0 || !onPiece({buffer.get(), static_cast<std::size_t>(got)})) return 0;
    }
}

} // namespace corvane::platform
