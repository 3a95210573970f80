#include "archive/file_placement.h"

#include <cerrno>
#include <system_error>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "archive/archive_naming.h"
#include "archive/durable_write.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "platform/stop_watch.h"
#include "records/logs/console_log.h"
#include "text/collation.h"
#include "text/graphemes.h"

namespace corvane::archive {

namespace {

// Absent when the folder can't be listed.
std::optional<std::unordered_set<std::string>> composedNamesIn(const std::string& folder) {
    std::unordered_set<std::string> names;
    const bool wasListed = platform::visitDirectory(
        folder, [&](std::string_view name, unsigned char) { names.insert(text::canonicallyComposed(name)); });
    if (!wasListed) return std::nullopt;
    return names;
}

std::string systemReason() {
    return std::generic_category().message(errno);
}

} // namespace

FilePlacement::FilePlacement(platform::FileLayer& files, ArchiveFolders& folders, JobLimit& limit,
                             const std::string& relativePath, std::string_view bytes)
  : files_(files)
  , folders_(folders)
  , limit_(limit)
  , relativePath_(relativePath)
  , bytes_(bytes)
  , path_(folders.root.at(relativePath)) {}

PlacedFile FilePlacement::place() {
    limit_.restart();
    ArchiveFolders::Folder& folder = prepareFolder();
    struct stat status{};
    if (files_.stat(path_, status) != 0) {
        if (errno != ENOENT) refuse(systemReason());
    } else if (!isKnownBySpelling(folder)) {
        result_.outcome = PlacedFile::Outcome::nameTaken;
        return result_;
    } else if (keepExisting(status)) {
        result_.outcome = PlacedFile::Outcome::alreadyInPlace;
        return result_;
    }
    write();
    return result_;
}

ArchiveFolders::Folder& FilePlacement::prepareFolder() {
    const std::string account(platform::parentPath(relativePath_));
    if (const auto known = folders_.prepared.find(account); known != folders_.prepared.end()) {
        return known->second;
    }
    // Not with the root: where a disk has gone, its folder must not come up on the one below.
    const bool isYearSpelledSo = makeFolder(std::string(platform::parentPath(account)));
    const bool isSpelledSo = makeFolder(account) && isYearSpelledSo;
    return folders_.prepared[account] = {.isSpelledSo = isSpelledSo, .fileNames = {}};
}

// Makes the folder or finds it in place; whether its name on the disk is the given one.
bool FilePlacement::makeFolder(const std::string& relativeFolder) {
    const std::string folder = folders_.root.at(relativeFolder);
    const bool isNew = files_.makeDirectory(folder, 0755) == 0;
    if (!isNew && errno != EEXIST) refuse(systemReason());
    if (!folders_.root.holdsFolder(folder)) refuse("not a folder of this archive");
    if (isNew) return true;
    const auto siblings = composedNamesIn(std::string(platform::parentPath(folder)));
    return siblings && siblings->contains(text::canonicallyComposed(platform::lastPathComponent(folder)));
}

void FilePlacement::refuse(std::string_view reason) const {
    consoleLine(fmt::format("[archive] {}: {}", path_, reason));
    throw ArchiveError(ArchiveError::Case::writeFailed);
}

bool FilePlacement::isKnownBySpelling(ArchiveFolders::Folder& folder) {
    if (!folder.isSpelledSo) return false;
    if (!folder.fileNames) folder.fileNames = composedNamesIn(std::string(platform::parentPath(path_)));
    if (!folder.fileNames) refuse(systemReason());
    return folder.fileNames->contains(text::canonicallyComposed(platform::lastPathComponent(path_)));
}

// True when the file holds the bytes and is flushed; otherwise its place is free afterwards.
bool FilePlacement::keepExisting(const struct stat& status) {
    if (!S_ISREG(status.st_mode)) refuse("not a regular file");
    auto content = DiskContent::other;
    if (static_cast<std::uint64_t>(status.st_size) <= bytes_.size()) {
        const platform::StopWatch watch;
        // A killed run may have died before its flush.
        content = contentOnDisk(files_, bytes_, path_, BeforeReading::flush, [this] { limit_.restart(); });
        result_.verifying = watch.elapsed();
    }
    limit_.restart();
    switch (content) {
    case DiskContent::same:
        return true;
    case DiskContent::unfinished:
        if (files_.unlink(path_) != 0) refuse(systemReason());
        return false;
    case DiskContent::other:
        moveAside();
        return false;
    case DiskContent::unreadable:
        break;
    }
    refuse("can't be read");
}

void FilePlacement::moveAside() {
    constexpr int mostTries = 1000;
    const std::string_view stem = platform::withoutExtension(platform::lastPathComponent(path_));
    for (int number = 1; number <= mostTries; ++number) {
        const std::string tail =
            number == 1 ? "（原有文件）.eml" : fmt::format("（原有文件）-{}.eml", number);
        const std::string_view start = text::graphemePrefixWithinBytes(stem, maximumNameBytes - tail.size());
        const std::string aside = platform::joinPath(platform::parentPath(path_), std::string(start) + tail);
        struct stat status{};
        if (files_.stat(aside, status) == 0) continue;
        if (errno != ENOENT || files_.rename(path_, aside) != 0) refuse(systemReason());
        consoleLine(fmt::format("[archive] {}: 已有内容不同的文件，保留为 {}", path_, aside));
        return;
    }
    refuse("too many files of this name");
}

void FilePlacement::write() {
    limit_.restart();
    writePOSIXBlocking(files_, bytes_, path_);
    limit_.restart();
    const platform::StopWatch watch;
    const bool isProved = verifyOnDisk(files_, bytes_, path_, [this] { limit_.restart(); });
    result_.verifying += watch.elapsed();
    if (!isProved) throw ArchiveError(ArchiveError::Case::writeVerificationFailed);
}

} // namespace corvane::archive
