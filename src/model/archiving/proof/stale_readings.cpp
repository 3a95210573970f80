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

void addStaleCopies(platform::FileLayer& files, const ProofFacts& facts, const MessageList& messages,
                    Date before, ReadingPaths& stale) {
    std::unordered_set<std::string> named;
    for (const MailMessageRecord& message : messages) {
        for (const FileURL& file : message.allMessageFileURLs()) named.insert(std::string(file.path()));
    }
    facts.copies.forEach([&](std::string_view path, const FileReading& reading) {
        std::string copy(path);
        if (reading.readAt < before && !named.contains(copy) && isSurelyGone(files, copy))
            stale.copies.push_back(std::move(copy));
    });
}

// Nothing is said of an archive that the library doesn't hold: it may be out of reach.
void addStaleFiles(const ProofFacts& facts, const std::vector<ArchivedEntry>& entries, Date before,
                   ReadingPaths& stale) {
    std::map<std::string_view, std::unordered_set<std::string_view>> named;
    for (const ArchivedEntry& entry : entries)
        named[entry.locationRootPath.view()].insert(entry.record.emlRelativePath.view());
    for (const auto& [root, table] : facts.archived) {
        const auto paths = named.find(root);
        if (paths == named.end()) continue;
        table.forEach([&](std::string_view path, const FileReading& reading) {
            if (reading.readAt < before && !paths->second.contains(path))
                stale.archived[root].emplace_back(path);
        });
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
