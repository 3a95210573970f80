#include "model/library/presence/original_presence.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/threads/parallel.h"
#include "records/archived/presence_signature.h"

namespace corvane {

namespace {

using Status = ArchivedOriginalPresenceStatus;

constexpr std::size_t entriesPerPart = 4096;

bool haveSameIDs(const std::vector<ArchivedEntry>& a, const std::vector<ArchivedEntry>& b) {
    return std::ranges::equal(a, b, [](const ArchivedEntry& one, const ArchivedEntry& other) {
        return one.record.id == other.record.id && one.locationRootPath == other.locationRootPath;
    });
}

// The statuses of `known` in the order of other entries.
std::vector<Status> statusesInOrder(const std::vector<ArchivedEntry>& entries,
                                    const OriginalPresence& known) {
    if (known.statuses.empty() || haveSameIDs(entries, *known.entries)) return known.statuses;
    std::unordered_map<std::string, Status> byID;
    byID.reserve(known.statuses.size());
    for (std::size_t at = 0; at < known.statuses.size(); ++at)
        byID.emplace((*known.entries)[at].id(), known.statuses[at]);
    std::vector<Status> statuses(entries.size(), Status::unknown);
    for (std::size_t at = 0; at < entries.size(); ++at) {
        const auto found = byID.find(entries[at].id());
        if (found != byID.end()) statuses[at] = found->second;
    }
    return statuses;
}

// Absent where there is nothing to be had, for whatever reason.
std::optional<ArchivedOriginalPresenceCacheStore::Statuses>
cached(const ArchivedOriginalPresenceCacheStore& store, const OriginalPresence& presence) {
    try {
        return store.statuses(presence.signature, *presence.entries);
    } catch (const std::exception&) { // a damaged cache counts as none
        return std::nullopt;
    }
}

} // namespace

OriginalPresence::State OriginalPresence::state() const {
    if (!statuses.empty()) return State::checked;
    return failureMessage ? State::unavailable : State::unchecked;
}

Status OriginalPresence::statusOf(const ArchivedEntry& entry) const {
    const ArchivedEntry* const first = entries->data();
    const bool isOurs =
        std::greater_equal<>()(&entry, first) && std::less<>()(&entry, first + entries->size());
    return isOurs ? statusAt(static_cast<std::size_t>(&entry - first)) : Status::unknown;
}

std::string_view rawValue(OriginalPresence::State state) {
    switch (state) {
    case OriginalPresence::State::checked:
        return "checked";
    case OriginalPresence::State::unavailable:
        return "unavailable";
    case OriginalPresence::State::unchecked:
        break;
    }
    return "unchecked";
}

std::string archivedOriginalPresenceSignature(const std::vector<ArchivedEntry>& entries) {
    std::vector<PresenceSignature> parts((entries.size() + entriesPerPart - 1) / entriesPerPart);
    platform::parallelFor(0, parts.size(), [&](std::size_t number) {
        const std::size_t first = number * entriesPerPart;
        const std::size_t end = std::min(first + entriesPerPart, entries.size());
        for (std::size_t at = first; at < end; ++at)
            parts[number].add(entries[at].locationRootPath, entries[at].record);
    });
    PresenceSignature signature;
    for (const PresenceSignature& part : parts) signature.add(part);
    return signature.text();
}

SharedPresence presenceOfEntries(SharedEntryList entries, const SharedPresence& earlier) {
    auto presence = std::make_shared<OriginalPresence>();
    presence->signature = archivedOriginalPresenceSignature(*entries);
    if (presence->signature == earlier->signature) {
        presence->statuses = statusesInOrder(*entries, *earlier);
        presence->checkedAt = earlier->checkedAt;
        presence->isOfEarlierRun = earlier->isOfEarlierRun;
        presence->failureMessage = earlier->failureMessage;
    }
    presence->entries = std::move(entries);
    return presence;
}

SharedPresence restoredPresence(const OriginalPresence& presence,
                                const ArchivedOriginalPresenceCacheStore& store) {
    auto cache = cached(store, presence);
    if (!cache) return nullptr;
    auto restored = std::make_shared<OriginalPresence>();
    restored->entries = presence.entries;
    restored->signature = presence.signature;
    restored->checkedAt = cache->cachedAt;
    restored->isOfEarlierRun = true;
    restored->statuses = std::move(cache->byPosition);
    return restored;
}

} // namespace corvane
