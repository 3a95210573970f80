#include "model/archiving/proof/stale_readings.h"

#include <cerrno>
#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "platform/files/layers/layer_reading.h"

namespace corvane {

namespace {

constexpr std::chrono::days longAgo(31);

bool isSurelyGone(platform::FileLayer& files, const std::string& path) {
    struct stat status{};
    return files.stat(path, status) != 0 && platform::saysAbsent(errno);
}

using OldPaths = std::unordered_set<std::string_view>;

// Most often there are none, and then no owner is looked at.
OldPaths oldPaths(const ReadingTable& table, Date before) {
    OldPaths old;
    table.forEach([&](std::string_view path, const FileReading& reading) {
        if (reading.readAt < before) old.insert(path);
    });
    return old;
}

void addStaleCopies(platform::FileLayer& files, const ProofFacts& facts, const MessageList& messages,
                    Date before, ReadingPaths& stale) {
    OldPaths old = oldPaths(facts.copies, before);
    if (old.empty()) return;
    for (const MailMessageRecord& message : messages) {
        for (const FileURL& file : message.allMessageFileURLs()) old.erase(file.path().view());
    }
    for (const std::string_view path : old) {
        std::string copy(path);
        if (isSurelyGone(files, copy)) stale.copies.push_back(std::move(copy));
    }
}

// Nothing is said of an archive that the library doesn't hold: it may be out of reach.
void addStaleFiles(const ProofFacts& facts, const std::vector<ArchivedEntry>& entries, Date before,
                   ReadingPaths& stale) {
    struct OldFiles {
        OldPaths paths;
        bool isHeld = false;
    };

    std::map<std::string_view, OldFiles> old;
    for (const auto& [root, table] : facts.archived) {
        if (auto paths = oldPaths(table, before); !paths.empty()) old[root].paths = std::move(paths);
    }
    if (old.empty()) return;
    for (const ArchivedEntry& entry : entries) {
        const auto files = old.find(entry.locationRootPath.view());
        if (files == old.end()) continue;
        files->second.isHeld = true;
        files->second.paths.erase(entry.record.emlRelativePath.view());
    }
    for (const auto& [root, files] : old) {
        if (files.isHeld && !files.paths.empty())
            stale.archived[std::string(root)].assign(files.paths.begin(), files.paths.end());
    }
}

} // namespace

ReadingPaths staleReadings(platform::FileLayer& files, const ProofFacts& facts, const ReadingOwners& owners,
                           Date now) {
    ReadingPaths stale;
    addStaleCopies(files, facts, *owners.messages, now - longAgo, stale);
    addStaleFiles(facts, *owners.entries, now - longAgo, stale);
    return stale;
}

} // namespace corvane
