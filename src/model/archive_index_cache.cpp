#include "model/archive_index_cache.h"

#include <fmt/format.h>

#include "model/archive_locations.h"
#include "model/archived_files.h"
#include "platform/directory.h"
#include "platform/durable_file.h"
#include "platform/paths.h"
#include "records/archive_index_file.h"
#include "records/json_writer.h"
#include "records/record_forms.h"
#include "records/stable_hash.h"

namespace corvane {

namespace {

constexpr std::string_view folderName = "index-cache";

// Room for millions of records. An index comes from outside and is read whole.
constexpr std::int64_t largestIndexBytes = std::int64_t{2} << 30;

std::optional<EmailArchiveIndex> readIndex(const std::string& path) {
    if (platform::fileSize(path).value_or(0) > largestIndexBytes) return std::nullopt;
    return readArchiveIndex(path);
}

bool fileHolds(const std::string& path, const std::string& content) {
    const auto size = static_cast<std::int64_t>(content.size());
    return platform::fileSize(path) == size && platform::readFile(path, size) == content;
}

} // namespace

std::optional<EmailArchiveIndex> ArchiveIndexCache::loadIndexWithCache(const std::string& archiveRoot,
                                                                       std::string_view key,
                                                                       bool connected) const {
    if (!connected) return readIndex(indexCachePath(key));
    const std::string indexPath = platform::joinPath(archiveRoot, archiveIndexFileName);
    const FilePresence presence = filePresence(support_.files(), indexPath);
    if (presence == FilePresence::present) {
        auto index = readIndex(indexPath);
        if (index) store(key, *index);
        return index;
    }
    // Asked again, since a disk pulled a moment ago answers like a deleted folder.
    if (presence == FilePresence::absent && volumeMounted(platform_, archiveRoot)) remove(key);
    return std::nullopt;
}

std::string ArchiveIndexCache::indexCachePath(std::string_view key) const {
    return support_.filePath(fmt::format("{}/{}.json", folderName, stableHash(key)));
}

void ArchiveIndexCache::remove(std::string_view key) const {
    support_.files().unlink(indexCachePath(key));
}

// An index seldom changes from one load to the next, and a durable write of a large one is dear.
void ArchiveIndexCache::store(std::string_view key, const EmailArchiveIndex& index) const {
    const std::string content = encodeJson(index);
    const std::string path = indexCachePath(key);
    if (fileHolds(path, content)) return;
    if (platform::createDirectories(support_.files(), support_.filePath(folderName))) return;
    // A failure costs the view of this archive while its disk is away, no more.
    std::ignore = platform::writeFileAtomically(support_.files(), path, content);
}

} // namespace corvane
