#include "listing/proof/away_proofs.h"

#include <algorithm>
#include <string_view>

#include "records/archived/stable_id.h"

namespace corvane {

ArchiveRoots disconnectedRoots(const std::vector<ArchiveLocation>& locations) {
    ArchiveRoots roots;
    for (const ArchiveLocation& location : locations) {
        if (!location.isConnected) roots.insert(location.rootPath);
    }
    return roots;
}

std::optional<AwayProof> awayProof(const ProofTable& proofs, const ArchiveRoots& awayRoots,
                                   const MailMessageRecord& message) {
    if (!proofs.records || !proofs.provenIDs->contains(message.id.view())) return {};

    struct Away {
        const FileReading* reading = nullptr;
        bool isInCloud = false;
    };

    std::vector<Away> away;
    std::vector<platform::Sha256Digest> here;
    proofs.records->visit(stableID(message), [&](const ArchivedEntry& entry) {
        const std::string_view root = entry.locationRootPath;
        const std::string_view path = entry.record.emlRelativePath;
        const FileReading* const reading = proofs.inputs.facts->archivedReading(root, path);
        if (reading == nullptr || reading->outcome != FileReading::Outcome::complete) return;
        if (awayRoots.contains(root)) return away.push_back({reading, false});
        const ProofFile::Place place = proofs.inputs.looks->at(root, path).place;
        if (place == ProofFile::Place::there) here.push_back(reading->hash);
        if (place == ProofFile::Place::outOfReach) away.push_back({reading, true});
    });
    std::optional<AwayProof> oldest;
    for (const Away& each : away) {
        if (std::ranges::find(here, each.reading->hash) != here.end()) continue;
        if (!oldest || each.reading->readAt < oldest->readAt)
            oldest = {.readAt = each.reading->readAt, .isInCloud = each.isInCloud};
    }
    return oldest;
}

AwayProofs awayProofs(const ProofTable& proofs, const ArchiveRoots& awayRoots, const MessageList& messages,
                      const std::function<bool(const MailMessageRecord&)>& isLookedAt) {
    AwayProofs found;
    for (const MailMessageRecord& message : messages) {
        const auto away = awayProof(proofs, awayRoots, message);
        if (!away || !isLookedAt(message)) continue;
        found.oldest = found.count == 0 ? away->readAt : std::min(found.oldest, away->readAt);
        found.count += 1;
        if (away->isInCloud) found.inCloud += 1;
    }
    return found;
}

} // namespace corvane
