#include "model/archiving/proof/seen_files.h"

#include <string>
#include <string_view>

#include "records/timestamps.h"

namespace corvane {

namespace {

// A file that is there later is read again.
FileReading goneFile() {
    return {.stamp = unknownStamp,
            .outcome = FileReading::Outcome::gone,
            .hash = {},
            .bodyHash = {},
            .readAt = currentTimestamp()};
}

// What was found out against a file already stays.
bool mayBeSound(const FileReading* reading) {
    return reading == nullptr || reading->outcome == FileReading::Outcome::complete;
}

// What was read before change times were kept has none.
bool isAsRead(const FileStamp& now, const FileStamp& read) {
    FileStamp compared = now;
    if (read.changedNanoseconds < 0) compared.changedNanoseconds = read.changedNanoseconds;
    return compared == read;
}

} // namespace

TakenBack readingsTakenBackBy(const SeenFiles& seen, const ProofFacts& kept) {
    TakenBack takenBack;
    const auto lose = [&](const std::string& root, std::string_view path) {
        if (mayBeSound(kept.archivedReading(root, path)))
            takenBack.lost.archived[root].push_back({std::string(path), goneFile()});
    };
    for (const ArchivedEntry& entry : *seen.entries) {
        const auto files = seen.files->byRoot.find(entry.locationRootPath);
        if (files == seen.files->byRoot.end()) continue;
        const auto& [root, ofRoot] = *files;
        const std::string_view path = entry.record.emlRelativePath;
        const FileStamp* const now = seen.files->stamp(root, path);
        if (now == nullptr) {
            if (ofRoot->presence(path) == ArchivedFilePresence::gone) lose(root, path);
        } else if (now->sizeBytes != entry.record.sizeBytes) {
            lose(root, path);
        } else if (const FileReading* reading = kept.archivedReading(root, path);
                   reading != nullptr && mayBeSound(reading) && !isAsRead(*now, reading->stamp)) {
            takenBack.outdated.archived[root].emplace_back(path);
        }
    }
    for (const auto& [root, paths] : seen.goneWithoutIndex) {
        for (const SharedText& path : paths) lose(root, path);
    }
    return takenBack;
}

} // namespace corvane
