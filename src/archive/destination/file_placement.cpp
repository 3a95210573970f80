#include "archive/destination/file_placement.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "archive/archive_naming.h"
#include "platform/files/cloud_placeholder.h"
#include "platform/files/layers/folder_file_layer.h"
#include "platform/paths.h"
#include "platform/stop_watch.h"
#include "records/logs/console_log.h"
#include "text/collation.h"
#include "text/graphemes.h"

namespace corvane::archive {

FilePlacement::FilePlacement(platform::FileLayer& files, ArchiveFolders& folders, platform::JobLimit& limit,
                             const std::string& relativePath, std::string_view bytes)
  : files_(files)
  , folders_(folders)
  , limit_(limit)
  , relativePath_(relativePath)
  , name_(platform::lastPathComponent(relativePath))
  , bytes_(bytes) {}

PlacedFile FilePlacement::place() {
    limit_.restart();
    // Not with the root: where a disk has gone, its folder must not come up on the one below.
    const std::string relativeFolder(platform::parentPath(relativePath_));
    ArchiveFolders::Opened opened = folders_.make(files_, relativeFolder);
    if (!opened.descriptor) refuseByError();
    result_.folder = {relativeFolder, opened.known->identity};
    platform::FolderFileLayer folder(files_, opened.descriptor.get());
    placeIn(folder, opened);
    return result_;
}

void FilePlacement::placeIn(platform::FileLayer& folder, ArchiveFolders::Opened& opened) {
    struct stat status{};
    if (folder.stat(name_, status) == 0) {
        if (!isKnownBySpelling(opened)) {
            result_.outcome = PlacedFile::Outcome::nameTaken;
            return;
        }
        if (keepExisting(folder, status)) {
            result_.outcome = PlacedFile::Outcome::alreadyInPlace;
            return;
        }
    } else if (!isFree(folder)) {
        result_.outcome = PlacedFile::Outcome::nameTaken;
        return;
    }
    write(folder);
}

// After a look that found no file; errno is that of the look.
bool FilePlacement::isFree(platform::FileLayer& folder) {
    if (errno != ENOENT) refuseByError();
    struct stat status{};
    if (folder.stat(platform::cloudPlaceholderPath(name_), status) == 0) return false;
    // A name that is just short enough has none for its placeholder.
    if (errno != ENOENT && errno != ENAMETOOLONG) refuseByError();
    return true;
}

void FilePlacement::refuse(std::string_view reason, int error) const {
    consoleLine(fmt::format("[archive] {}: {}", relativePath_, reason));
    throw ArchiveError(ArchiveError::Case::writeFailed, error);
}

void FilePlacement::refuseByError() const {
    const int error = errno;
    refuse(std::generic_category().message(error), error);
}

bool FilePlacement::isKnownBySpelling(ArchiveFolders::Opened& opened) {
    ArchiveFolders::Known& known = *opened.known;
    if (!known.isSpelledSo) return false;
    if (!known.fileNames) known.fileNames = composedNamesIn(files_, opened.descriptor.get());
    if (!known.fileNames) refuseByError();
    return known.fileNames->contains(text::canonicallyComposed(name_));
}

// True when the file holds the bytes and is flushed; otherwise its place is free afterwards.
bool FilePlacement::keepExisting(platform::FileLayer& folder, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) refuse("not a regular file");
    auto content = DiskContent::other;
    if (static_cast<std::uint64_t>(status.st_size) <= bytes_.size()) {
        // A killed run may have died before its flush.
        result_.reading = readBack(folder, BeforeReading::flush);
        content = result_.reading.content;
    }
    limit_.restart();
    switch (content) {
    case DiskContent::same:
        return true;
    case DiskContent::unfinished:
        if (folder.unlink(name_) != 0) refuseByError();
        return false;
    case DiskContent::other:
        moveAside(folder);
        return false;
    case DiskContent::unreadable:
        break;
    }
    refuse("can't be read");
}

void FilePlacement::moveAside(platform::FileLayer& folder) {
    constexpr int mostTries = 1000;
    const std::string_view stem = platform::withoutExtension(name_);
    for (int number = 1; number <= mostTries; ++number) {
        const std::string tail =
            number == 1 ? "（原有文件）.eml" : fmt::format("（原有文件）-{}.eml", number);
        const std::string_view start = text::graphemePrefixWithinBytes(stem, maximumNameBytes - tail.size());
        const std::string aside = std::string(start) + tail;
        struct stat status{};
        if (folder.stat(aside, status) == 0) continue;
        if (errno != ENOENT || folder.rename(name_, aside) != 0) refuseByError();
        consoleLine(fmt::format("[archive] {}: 已有内容不同的文件，保留为 {}", relativePath_, aside));
        return;
    }
    refuse("too many files of this name");
}

void FilePlacement::write(platform::FileLayer& folder) {
    limit_.restart();
    const platform::FileIdentity file = writePOSIXBlocking(folder, bytes_, name_);
    limit_.restart();
    result_.reading = readBack(folder, BeforeReading::nothing);
    if (result_.reading.content == DiskContent::same) return;
    removeFile(folder, name_, file);
    throw ArchiveError(ArchiveError::Case::writeVerificationFailed);
}

DiskReading FilePlacement::readBack(platform::FileLayer& folder, BeforeReading before) {
    const platform::StopWatch watch;
    const auto restart = [this] { limit_.restart(); };
    const DiskReading reading = contentOnDisk(folder, bytes_, name_, before, restart);
    result_.verifying += watch.elapsed();
    return reading;
}

} // namespace corvane::archive
