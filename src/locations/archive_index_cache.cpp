#include "locations/archive_index_cache.h"

#include <fstream>
#include <tuple>
#include <vector>

#include <fmt/format.h>

#include "locations/archive_locations.h"
#include "locations/archived_files.h"
#include "platform/files/directory.h"
#include "platform/files/durable_file.h"
#include "platform/paths.h"
#include "records/stable_hash.h"
#include "records/stores/archive_index_file.h"

namespace corvane {

namespace {

constexpr std::string_view folderName = "index-cache";

// Room for millions of records. An index comes from outside and is read whole.
constexpr std::int64_t largestIndexBytes = std::int64_t{2} << 30;

std::optional<std::string> contentOf(const std::string& path) {
    return platform::readFile(path, largestIndexBytes);
}

std::optional<EmailArchiveIndex> decoded(const std::optional<std::string>& content) {
    return content ? decodeArchiveIndex(*content) : std::nullopt;
}

// In pieces: an index may be as large as the memory that is left.
bool fileHolds(const std::string& path, std::string_view content) {
    if (platform::fileSize(path) != static_cast<std::int64_t>(content.size())) return false;
    std::ifstream file(path, std::ios::binary);
    std::vector<char> piece(std::size_t{1} << 20);
    while (!content.empty()) {
        const std::string_view expected = content.substr(0, piece.size());
        file.read(piece.data(), static_cast<std::streamsize>(expected.size()));
        if (!file || std::string_view(piece.data(), expected.size()) != expected) return false;
        content.remove_prefix(expected.size());
    }
    return true;
}

} // namespace

std::optional<EmailArchiveIndex> ArchiveIndexCache::loadIndexWithCache(const std::string& archiveRoot,
                                                                       std::string_view key,
                                                                       bool connected) const {
    if (!connected) return decoded(contentOf(indexCachePath(key)));
    const std::string indexPath = platform::joinPath(archiveRoot, archiveIndexFileName);
    const FilePresence presence = filePresence(support_.files(), indexPath);
    if (presence == FilePresence::present) {
        const auto content = contentOf(indexPath);
        auto index = decoded(content);
        if (index) store(key, *content);
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
void ArchiveIndexCache::store(std::string_view key, const std::string& content) const {
    const std::string path = indexCachePath(key);
    if (fileHolds(path, content)) return;
    if (platform::createDirectories(support_.files(), support_.filePath(folderName))) return;
    // A failure costs the view of this archive while its disk is away, no more.
    std::ignore = platform::writeFileAtomically(support_.files(), path, content);
}

} // namespace corvane
