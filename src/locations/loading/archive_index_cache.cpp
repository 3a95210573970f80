#include "locations/loading/archive_index_cache.h"

#include <cerrno>
#include <charconv>
#include <cstddef>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>

#include "locations/archive_locations.h"
#include "locations/loading/archived_files.h"
#include "platform/files/directory.h"
#include "platform/files/sha256.h"
#include "platform/files/writing/durable_file.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_decoder.h"
#include "records/archive_files/archive_index_file.h"
#include "records/logs/console_log.h"
#include "records/stable_hash.h"

namespace corvane {

namespace {

constexpr std::string_view folderName = "index-cache";
constexpr std::size_t pieceBytes = std::size_t{1} << 20;
constexpr std::int64_t mostDeviceBytes = 32;

using OnPiece = std::function<void()>;
using Sink = std::function<void(std::string_view)>;

class OpenFile {
  public:
    OpenFile(platform::FileLayer& files, const std::string& path)
      : files_(files)
      , descriptor_(files.open(path, O_RDONLY | O_NONBLOCK, 0)) {}

    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    ~OpenFile() {
        if (descriptor_ >= 0) files_.close(descriptor_);
    }

    ssize_t read(std::vector<char>& buffer) {
        return descriptor_ < 0 ? -1 : files_.read(descriptor_, buffer.data(), buffer.size());
    }

  private:
    platform::FileLayer& files_;
    int descriptor_;
};

// False when it is no regular file, can't be read to its end, or is too large for an index.
bool readIndexText(platform::FileLayer& files, const std::string& path, const OnPiece& onPiece,
                   const Sink& sink) {
    struct stat status{};
    if (onPiece) onPiece();
    if (files.stat(path, status) != 0 || !S_ISREG(status.st_mode)) return false;
    OpenFile file(files, path);
    std::vector<char> buffer(pieceBytes);
    std::int64_t size = status.st_size;
    for (std::int64_t read = 0; size <= largestArchiveIndexBytes; size = read) {
        if (onPiece) onPiece();
        const ssize_t got = file.read(buffer);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return got == 0;
        sink({buffer.data(), static_cast<std::size_t>(got)});
        read += got;
    }
    consoleLine(
        fmt::format("[archive] 归档索引超过 {} MB，未读取：{}", largestArchiveIndexBytes >> 20, path));
    return false;
}

std::optional<EmailArchiveIndex> decodedFile(platform::FileLayer& files, const std::string& path,
                                             const OnPiece& onPiece, const KnownRecords& known) {
    ArchiveIndexDecoder decoder(known);
    const bool wasRead =
        readIndexText(files, path, onPiece, [&](std::string_view piece) { decoder.add(piece); });
    return wasRead ? decoder.finish() : std::nullopt;
}

// Whether a file has exactly the text that comes in pieces.
class TextComparison {
  public:
    explicit TextComparison(const std::string& path)
      : file_(path, std::ios::binary) {}

    void add(std::string_view piece) {
        buffer_.resize(piece.size());
        isSame_ = isSame_ && file_.read(buffer_.data(), static_cast<std::streamsize>(piece.size())) &&
                  buffer_ == piece;
    }

    bool hasSameEnd() { return isSame_ && file_.peek() == std::ifstream::traits_type::eof(); }

  private:
    std::ifstream file_;
    std::string buffer_;
    bool isSame_ = true;
};

// Copies the index if it is still the text with this hash. False for a failure, which costs the view of this
// archive while its disk is away, no more.
bool copyIndex(platform::FileLayer& files, const std::string& from, const std::string& to,
               const platform::Sha256Digest& hash, const OnPiece& onPiece) {
    const auto produce = [&](const platform::ByteSink& sink) {
        platform::Sha256 copied;
        const bool wasRead = readIndexText(files, from, onPiece, [&](std::string_view piece) {
            copied.update(piece);
            sink(piece);
        });
        if (!wasRead || copied.digest() != hash) throw std::runtime_error("the index has changed");
    };
    try {
        return !platform::writeFileAtomically(files, to, produce);
    } catch (const std::runtime_error& error) {
        consoleLine(fmt::format("[archive] {}: {}", from, error.what()));
        return false;
    }
}

} // namespace

std::optional<EmailArchiveIndex> ArchiveIndexCache::loadIndexWithCache(const std::string& archiveRoot,
                                                                       std::string_view key, bool connected,
                                                                       const std::function<void()>& onPiece,
                                                                       const KnownIndex& known) const {
    if (!connected) return loadCopy(archiveRoot, key, onPiece, known.records);
    const std::string indexPath = platform::joinPath(archiveRoot, archiveIndexFileName);
    const FilePresence presence = filePresence(support_.files(), indexPath);
    if (presence == FilePresence::present) return loadConnected(archiveRoot, key, onPiece, known);
    // Asked again, since a disk pulled a moment ago answers like a deleted folder.
    if (presence == FilePresence::absent && volumeMounted(platform_, archiveRoot)) remove(key);
    return std::nullopt;
}

// By the digest, which holds for one state of the index and of its copy.
bool ArchiveIndexCache::isAsKnown(const std::string& root, const KnownIndex& known) const {
    if (!known.stamp) return false;
    const ArchiveDigest::Files files = digestFiles(root);
    struct stat status{};
    if (support_.files().stat(files.index, status) != 0 || SourceStamp::of(status) != *known.stamp)
        return false;
    const auto digest = ArchiveDigest::open(files, root);
    return digest && digest->fits(*known.stamp) && !digest->isOfUnusableIndex();
}

// An index seldom changes from one load to the next, and a durable write of a large one is dear.
std::optional<EmailArchiveIndex> ArchiveIndexCache::loadConnected(const std::string& root,
                                                                  std::string_view key,
                                                                  const std::function<void()>& onPiece,
                                                                  const KnownIndex& known) const {
    if (isAsKnown(root, known))
        return EmailArchiveIndex{known.createdAt, known.updatedAt, known.records.all()};
    const std::string indexPath = platform::joinPath(root, archiveIndexFileName);
    const std::string copyPath = indexCachePath(key);
    ArchiveIndexDecoder decoder(known.records);
    TextComparison copy(copyPath);
    platform::Sha256 hash;
    struct stat before{};
    const bool isThere = support_.files().stat(indexPath, before) == 0;
    const bool wasRead = readIndexText(support_.files(), indexPath, onPiece, [&](std::string_view piece) {
        decoder.add(piece);
        copy.add(piece);
        hash.update(piece);
    });
    auto index = wasRead ? decoder.finish() : std::nullopt;
    if (!index) {
        // A failed reading says nothing of the index.
        const bool isNone = !S_ISREG(before.st_mode) || before.st_size > largestArchiveIndexBytes;
        if (isThere && (wasRead || isNone)) provideDigest(root, SourceStamp::of(before), false);
        return index;
    }
    const bool isCopied =
        copy.hasSameEnd() || (!platform::createDirectories(support_.files(), support_.filePath(folderName)) &&
                              copyIndex(support_.files(), indexPath, copyPath, hash.digest(), onPiece));
    if (onPiece) onPiece();
    if (isThere && isCopied) provideDigest(root, SourceStamp::of(before), true);
    return index;
}

// The digest is that of no index, unless it was made while the archive was there.
std::optional<EmailArchiveIndex> ArchiveIndexCache::loadCopy(const std::string& root, std::string_view key,
                                                             const std::function<void()>& onPiece,
                                                             const KnownRecords& known) const {
    auto index = decodedFile(support_.files(), indexCachePath(key), onPiece, known);
    if (!index) return index;
    const ArchiveDigest::Files files = digestFiles(root);
    const auto digest = ArchiveDigest::open(files, root);
    if (!digest || digest->isOfUnusableIndex())
        ArchiveDigest::make(support_.files(), files, root, SourceStamp());
    return index;
}

void ArchiveIndexCache::provideDigest(const std::string& root, const SourceStamp& index,
                                      bool isUsable) const {
    platform::FileLayer& layer = support_.files();
    const ArchiveDigest::Files files = digestFiles(root);
    const auto known = ArchiveDigest::open(files, root);
    struct stat now{};
    const bool isUnchanged = layer.stat(files.index, now) == 0 && SourceStamp::of(now) == index;
    if (!isUnchanged || (known && known->fits(index) && known->isOfUnusableIndex() == !isUsable)) return;
    if (isUsable)
        ArchiveDigest::make(layer, files, root, index);
    else if (!platform::createDirectories(layer, support_.filePath(folderName)))
        ArchiveDigest::makeOfUnusableIndex(layer, files, root, index);
}

ArchiveDigest::Files ArchiveIndexCache::digestFiles(const std::string& root) const {
    return {support_.filePath(fmt::format("{}/{}.digest", folderName, stableHash(root))),
            indexCachePath(root), platform::joinPath(root, archiveIndexFileName)};
}

std::string ArchiveIndexCache::indexCachePath(std::string_view key) const {
    return support_.filePath(fmt::format("{}/{}.json", folderName, stableHash(key)));
}

std::string ArchiveIndexCache::devicePath(std::string_view key) const {
    return support_.filePath(fmt::format("{}/{}.device", folderName, stableHash(key)));
}

void ArchiveIndexCache::rememberDevice(std::string_view key, std::uint64_t device) const {
    if (rememberedDevice(key) == device) return;
    if (platform::createDirectories(support_.files(), support_.filePath(folderName))) return;
    std::ignore = platform::writeFileAtomically(support_.files(), devicePath(key), std::to_string(device));
}

std::optional<std::uint64_t> ArchiveIndexCache::rememberedDevice(std::string_view key) const {
    const auto text = platform::readFile(devicePath(key), mostDeviceBytes);
    std::uint64_t device = 0;
    if (!text || text->empty()) return std::nullopt;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), device);
    if (error != std::errc() || end != text->data() + text->size()) return std::nullopt;
    return device;
}

bool ArchiveIndexCache::isRootGone(const std::string& root) const {
    platform::FileLayer& files = support_.files();
    // Folders above may have been deleted with it; the nearest that is there tells which disk this is. What
    // isn't there of a disk that comes and goes says nothing.
    const auto mountPoint = platform_.removableMountPoint(root);
    std::string above = root;
    for (FilePresence presence = filePresence(files, above); presence != FilePresence::present;
         presence = filePresence(files, above)) {
        if (presence == FilePresence::unknown || above.size() <= 1) return false;
        above = platform::parentPath(above);
    }
    struct stat status{};
    const auto device = rememberedDevice(root);
    if (mountPoint && !platform::isAtOrBelow(above, *mountPoint)) return false;
    return above != root && device && files.stat(above, status) == 0 &&
           static_cast<std::uint64_t>(status.st_dev) == *device;
}

void ArchiveIndexCache::remove(std::string_view key) const {
    support_.files().unlink(indexCachePath(key));
    support_.files().unlink(devicePath(key));
    support_.files().unlink(digestFiles(std::string(key)).digest);
}

} // namespace corvane
