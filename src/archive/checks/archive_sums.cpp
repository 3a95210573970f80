#include "archive/checks/archive_sums.h"

#include <fmt/format.h>

#include "archive/checks/archive_reader.h"
#include "platform/paths.h"
#include "records/archived/content_hash.h"

namespace corvane {

ArchiveSums sumsOf(const EmailArchiveIndex& index) {
    ArchiveSums sums;
    for (const ArchivedEmailRecord& record : index.records) {
        const auto hash = record.contentHash ? parseContentHash(*record.contentHash) : std::nullopt;
        if (!hash)
            ++sums.withoutHash;
        else if (platform::isSafeRelativePath(record.emlRelativePath))
            sums.sums.push_back({record.emlRelativePath.str(), hexDigits(*hash)});
    }
    return sums;
}

std::string sumLine(const ArchiveSums::Sum& sum) {
    std::string path;
    for (const char byte : sum.path) {
        if (byte == '\\')
            path += "\\\\";
        else if (byte == '\n')
            path += "\\n";
        else
            path += byte;
    }
    return fmt::format("{}{}  {}", path == sum.path ? "" : "\\", sum.sha256, path);
}

ArchiveSums sumsOfArchive(const std::string& root, const std::stop_token& stop) {
    return sumsOf(archive::ArchiveReader(platform::posixFileLayer(), root, {.stop = stop}).readIndex());
}

} // namespace corvane
