#include "archive/checks/proof_reading.h"

#include <cstdint>
#include <utility>

#include "archive/destination/durable_write.h"
#include "archive/largest_mail.h"
#include "archive/message_extraction.h"
#include "platform/files/cloud_content.h"
#include "platform/files/directory.h"
#include "platform/files/file_look.h"
#include "platform/paths.h"
#include "records/timestamps.h"

namespace corvane::archive {

namespace {

using Outcome = FileReading::Outcome;
using platform::FileLook;

bool isSameFile(const FileLook& a, const FileLook& b) {
    return a.presence == b.presence && stampOf(a) == stampOf(b) && a.device == b.device && a.inode == b.inode;
}

void hash(std::string_view message, const BodyHashNeed& needsBodyHash, FileReading& reading) {
    reading.hash = platform::sha256(message);
    if (needsBodyHash(reading.hash))
        reading.bodyHash = platform::sha256(message.substr(bodyStartIndex(message)));
}

FileReading readingOfCopy(const std::optional<std::string>& file, const BodyHashNeed& needsBodyHash) {
    FileReading reading;
    const auto message = file ? messageData(*file) : std::nullopt;
    if (!message) {
        // An empty file has nothing to cut.
        reading.outcome = file && file->empty() ? Outcome::incomplete : Outcome::unreadable;
        return reading;
    }
    reading.outcome = isWholeMessage(*file, *message) ? Outcome::complete : Outcome::incomplete;
    hash(*message, needsBodyHash, reading);
    return reading;
}

} // namespace

std::optional<FileReading> readCopy(const std::string& path, const BodyHashNeed& needsBodyHash) {
    const FileLook before = platform::lookAtFile(path);
    if (before.presence == FileLook::Presence::absent) return std::nullopt;
    FileReading reading = readingOfCopy(platform::readFile(path, largestMailBytes), needsBodyHash);
    if (!isSameFile(before, platform::lookAtFile(path))) return std::nullopt;
    reading.stamp = stampOf(before);
    reading.readAt = currentTimestamp();
    return reading;
}

ArchivedFileReader::ArchivedFileReader(platform::FileLayer& files, std::string root)
  : files_(files)
  , root_(std::move(root)) {}

std::optional<FileReading> ArchivedFileReader::read(std::string_view relativePath,
                                                    const BodyHashNeed& needsBodyHash,
                                                    const std::function<void()>& onProgress) {
    if (!platform::isSafeRelativePath(relativePath)) return std::nullopt;
    const std::string path = root_.at(relativePath);
    if (onProgress) onProgress();
    if (!holdsFolder(std::string(platform::parentPath(path)))) return std::nullopt;
    const FileLook before = platform::lookAtFile(path);
    if (before.presence == FileLook::Presence::absent) return std::nullopt;
    struct stat status{};
    if (files_.stat(path, status) == 0 && platform::isOnlyInCloud(status)) return std::nullopt;
    const auto bytes = content(path, onProgress);
    if (!isSameFile(before, platform::lookAtFile(path))) return std::nullopt;
    FileReading reading;
    reading.stamp = stampOf(before);
    reading.readAt = currentTimestamp();
    reading.outcome = bytes ? Outcome::complete : Outcome::unreadable;
    if (bytes) hash(*bytes, needsBodyHash, reading);
    return reading;
}

// Links are resolved once for the files of one folder, which come one after another.
bool ArchivedFileReader::holdsFolder(const std::string& folder) {
    if (!heldFolder_.empty() && heldFolder_ == folder) return true;
    heldFolder_ = root_.holdsFolder(folder) ? folder : std::string();
    return !heldFolder_.empty();
}

// Absent when the file can't be read to its end.
std::optional<std::string> ArchivedFileReader::content(const std::string& path,
                                                       const std::function<void()>& onProgress) {
    std::string bytes;
    bool isTooLarge = false;
    const bool wasRead = readUncached(files_, path, BeforeReading::nothing, [&](std::string_view piece) {
        if (onProgress) onProgress();
        isTooLarge = std::cmp_greater(bytes.size() + piece.size(), largestMailBytes);
        bytes += piece;
        return !isTooLarge;
    });
    if (!wasRead || isTooLarge) return std::nullopt;
    return bytes;
}

} // namespace corvane::archive
