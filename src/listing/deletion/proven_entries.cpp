#include "listing/deletion/proven_entries.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include <fmt/format.h>

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

using CopiesByID = std::unordered_map<std::string, std::size_t, TextHash, TextEqual>;

// How many copies Mail holds of the messages with these stable ids.
CopiesByID copiesByID(const MessageList& messages, const AvailabilityResult& available,
                      const SharedTextSet& stableIDs) {
    CopiesByID copies;
    for (const MailMessageRecord& message : messages) {
        if (!available.locallyAvailableIDs->contains(message.id)) continue;
        const std::string id = stableID(message);
        if (stableIDs.contains(id)) copies[id] += message.allMessageFileURLs().size();
    }
    return copies;
}

// Equal for the same bytes of one message; without a hash for what has the same size.
std::string contentKey(const ArchivedEmailRecord& record) {
    return fmt::format("{}\n{}\n{}", baseID(record), record.sizeBytes,
                       record.contentHash ? record.contentHash->view() : std::string_view());
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

std::vector<bool> freeingEntries(const std::vector<ArchivedEntry>& entries, const std::vector<bool>& proven,
                                 const MessageList& messages, const AvailabilityResult& available) {
    std::vector<bool> frees = proven;
    // Most messages have one entry, and nothing to be looked for.
    SharedTextSet ids;
    SharedTextSet repeatedIDs;
    for (std::size_t position = 0; position < entries.size(); ++position) {
        if (!proven[position]) continue;
        const SharedText id(baseID(entries[position].record));
        if (!ids.insert(id).second) repeatedIDs.insert(id);
    }
    if (repeatedIDs.empty()) return frees;
    CopiesByID left = copiesByID(messages, available, repeatedIDs);
    SharedTextSet counted; // contents, each behind its id
    for (std::size_t position = 0; position < entries.size(); ++position) {
        const ArchivedEmailRecord& record = entries[position].record;
        const auto copies = proven[position] ? left.find(baseID(record)) : left.end();
        if (copies == left.end()) continue;
        frees[position] = copies->second > 0 && counted.insert(SharedText(contentKey(record))).second;
        if (frees[position]) --copies->second;
    }
    return frees;
}

} // namespace corvane
