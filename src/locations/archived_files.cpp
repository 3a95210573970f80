#include "locations/archived_files.h"

#include <cerrno>

#include "platform/files/cloud_placeholder.h"
#include "platform/paths.h"

namespace corvane {

namespace {

bool isGone(platform::FileLayer& files, const ArchivedEmailRecord& record, const std::string& root) {
    return !platform::isSafeRelativePath(record.emlRelativePath) ||
           isArchiveFileGone(files, platform::joinPath(root, record.emlRelativePath));
}

} // namespace

FilePresence filePresence(platform::FileLayer& files, const std::string& path) {
    struct stat status{};
    if (files.stat(path, status) == 0) return FilePresence::present;
    // No file can have a name that is too long; the placeholder's is longer than the file's.
    const bool cannotExist = errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG;
    return cannotExist ? FilePresence::absent : FilePresence::unknown;
}

bool isArchiveFileGone(platform::FileLayer& files, const std::string& path) {
    return filePresence(files, path) == FilePresence::absent &&
           filePresence(files, platform::cloudPlaceholderPath(path)) == FilePresence::absent;
}

bool allArchivedEmlGone(platform::FileLayer& files, const EmailArchiveIndex& index,
                        const std::string& archiveRoot, const std::stop_token& stop) {
    for (const ArchivedEmailRecord& record : index.records) {
        if (stop.stop_requested() || !isGone(files, record, archiveRoot)) return false;
    }
    return !index.records.empty();
}

bool archiveLocationContentMissing(platform::FileLayer& files, const std::vector<ArchivedEntry>& entries,
                                   const std::string& rootPath) {
    if (filePresence(files, rootPath) != FilePresence::present) return false;
    bool hasEntries = false;
    for (const ArchivedEntry& entry : entries) {
        if (entry.locationRootPath != rootPath) continue;
        if (!isGone(files, entry.record, rootPath)) return false;
        hasEntries = true;
    }
    return hasEntries;
}

} // namespace corvane
