#include "listing/proven_entries.h"

#include <string>
#include <unordered_map>

#include "records/archived/stable_id.h"
#include "text/shared_text.h"

namespace corvane {

namespace {

// By stable id, of all recorded messages on this machine.
using ProvenByID = std::unordered_map<std::string, bool, TextHash, TextEqual>;

ProvenByID provenByID(const MessageList& messages, const AvailabilityResult& available) {
    ProvenByID known;
    const SharedTextSet& proven = *available.proofs->provenIDs;
    known.reserve(proven.size());
    for (const MailMessageRecord& message : messages) {
        if (!available.recordedMessageIDs->contains(message.id)) continue;
        if (!available.locallyAvailableIDs->contains(message.id)) continue;
        const bool isProven =
            available.archivedMessageIDs->contains(message.id) && proven.contains(message.id);
        const auto [place, isNew] = known.try_emplace(stableID(message), isProven);
        if (!isNew) place->second = place->second && isProven;
    }
    return known;
}

bool isGone(const ArchivedEntry& entry, const ArchivedFileLooks& looks) {
    const auto look = looks.at(entry.locationRootPath.view(), entry.record.emlRelativePath.view());
    return look.place == ProofFile::Place::gone;
}

} // namespace

std::vector<bool> provenEntries(const std::vector<ArchivedEntry>& entries, const MessageList& messages,
                                const AvailabilityResult& available) {
    std::vector<bool> proven(entries.size(), false);
    const SharedFileLooks& looks = available.proofs->inputs.looks;
    if (!looks || available.proofs->provenIDs->empty()) return proven;
    const ProvenByID byID = provenByID(messages, available);
    for (std::size_t position = 0; position < entries.size(); ++position) {
        const ArchivedEntry& entry = entries[position];
        const auto known = byID.find(baseID(entry.record));
        proven[position] = known != byID.end() && known->second && !isGone(entry, *looks);
    }
    return proven;
}

} // namespace corvane
