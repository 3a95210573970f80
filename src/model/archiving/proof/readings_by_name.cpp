#include "model/archiving/proof/readings_by_name.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "platform/files/file_identity.h"

namespace corvane {

namespace {

using Readings = std::vector<ArchivedFileReading>;

// Absent where there is no folder.
using Identity = std::optional<platform::FileIdentity>;

Identity folderAt(PlaceLook& look, const std::string& path) {
    struct stat status{};
    if (look.files().stat(path, status) != 0) return std::nullopt;
    return platform::FileIdentity::of(status);
}

bool isComplete(const FileReading& reading) {
    return reading.outcome == FileReading::Outcome::complete;
}

bool haveFileInCommon(const Readings& read, const ReadingTable& kept) {
    return std::ranges::any_of(read, [&](const ArchivedFileReading& file) {
        const FileReading* const known = kept.find(file.relativePath);
        return known != nullptr && isComplete(*known) && isComplete(file.reading) &&
               known->hash == file.reading.hash &&
               known->stamp.modifiedNanoseconds == file.reading.stamp.modifiedNanoseconds;
    });
}

// Those that aren't what is kept of files that were sound.
Readings takingBack(const Readings& read, const ReadingTable& kept) {
    Readings found;
    for (const ArchivedFileReading& file : read) {
        const FileReading* const known = kept.find(file.relativePath);
        if (known != nullptr && isComplete(*known) &&
            (!isComplete(file.reading) || known->hash != file.reading.hash))
            found.push_back(file);
    }
    return found;
}

void append(const Readings& readings, Readings& to) {
    to.insert(to.end(), readings.begin(), readings.end());
}

} // namespace

ReadingBatch underEveryName(const ReadingBatch& read, const ProofFacts& kept, PlaceLooks& looks) {
    ReadingBatch named = read;
    for (const auto& [root, readings] : read.archived) {
        std::vector<std::string> places{root};
        for (const auto& [name, table] : kept.archived) {
            if (name != root) places.push_back(name);
        }
        if (places.size() == 1) continue;
        const auto folders = looks.askAll<Identity>(places, &folderAt);
        const Identity folder = folders.front().value_or(std::nullopt);
        for (std::size_t i = 1; i < places.size(); ++i) {
            const Identity other = folders[i].value_or(std::nullopt);
            const ReadingTable& table = kept.archived.find(places[i])->second;
            if (!other) {
                if (haveFileInCommon(readings, table))
                    append(takingBack(readings, table), named.archived[places[i]]);
            } else if (other == folder) {
                append(readings, named.archived[places[i]]);
            }
        }
    }
    return named;
}

} // namespace corvane
