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

std::optional<Date> awayProofDate(const ProofTable& proofs, const ArchiveRoots& awayRoots,
                                  const MailMessageRecord& message) {
    if (awayRoots.empty() || !proofs.records || !proofs.provenIDs->contains(message.id.view())) return {};
    std::vector<const FileReading*> away;
    std::vector<platform::Sha256Digest> here;
    proofs.records->visit(stableID(message), [&](const ArchivedEntry& entry) {
        const std::string_view root = entry.locationRootPath;
        const std::string_view path = entry.record.emlRelativePath;
        const FileReading* const reading = proofs.inputs.facts->archivedReading(root, path);
        if (reading == nullptr || reading->outcome != FileReading::Outcome::complete) return;
        if (awayRoots.contains(root))
            away.push_back(reading);
        else if (proofs.inputs.looks->at(root, path).place == ProofFile::Place::there)
            here.push_back(reading->hash);
    });
    std::optional<Date> oldest;
    for (const FileReading* reading : away) {
        if (std::ranges::find(here, reading->hash) != here.end()) continue;
        oldest = std::min(oldest.value_or(reading->readAt), reading->readAt);
    }
    return oldest;
}

AwayProofs awayProofs(const ProofTable& proofs, const ArchiveRoots& awayRoots, const MessageList& messages,
                      const std::function<bool(const MailMessageRecord&)>& isLookedAt) {
    AwayProofs found;
    for (const MailMessageRecord& message : messages) {
        const auto date = awayProofDate(proofs, awayRoots, message);
        if (!date || !isLookedAt(message)) continue;
        found.oldest = found.count == 0 ? *date : std::min(found.oldest, *date);
        found.count += 1;
    }
    return found;
}

} // namespace corvane
