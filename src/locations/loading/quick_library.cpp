#include "locations/loading/quick_library.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <set>
#include <utility>

#include "locations/archive_locations.h"
#include "locations/known_locations.h"
#include "locations/loading/archive_discovery.h"
#include "locations/loading/archive_index_cache.h"
#include "locations/settings_keys.h"
#include "platform/files/file_look.h"
#include "platform/paths.h"
#include "records/stores/archive_index_file.h"
#include "search/mail_search_index.h"

namespace corvane {

// What is seen of a root without reading its index.
struct QuickLibrary::RootState {
    bool isConnected = false;
    std::optional<SourceStamp> index; // absent when it couldn't be looked at
    bool isIndexAbsent = false;
};

QuickLibrary::RootState QuickLibrary::lookAtRoot(PlaceLook& look, const platform::Platform& platform,
                                                 const std::string& root) {
    RootState state;
    state.isConnected = isLocationConnected(platform, root);
    struct stat status{};
    if (!state.isConnected || look.isGivenUp()) return state;
    if (look.files().stat(platform::joinPath(root, archiveIndexFileName), status) == 0)
        state.index = SourceStamp::of(status);
    else
        state.isIndexAbsent = errno == ENOENT || errno == ENOTDIR;
    return state;
}

std::optional<QuickLibrary> QuickLibrary::open(const platform::Platform& platform,
                                               const CorvaneAppSupport& support,
                                               const platform::SettingsStore& settings, PlaceLooks& looks) {
    const std::set<std::string> forgotten = forgottenLocations(settings);
    const std::set<std::string> forgottenPresent = forgottenPresentLocations(settings);
    // That they have been away is for a load to note.
    if (!rootsWithoutIndex(looks, forgottenPresent).empty()) return std::nullopt;
    RootList roots;
    roots.add(settings.text(transferDestinationKey).value_or(""));
    for (const std::string& root : knownLocations(settings)) roots.add(root);
    for (const std::string& root : discoverArchiveRoots(platform, looks)) roots.add(root);
    const auto states =
        looks.askAll<RootState>(roots.roots(), [&platform](PlaceLook& look, const std::string& root) {
            return lookAtRoot(look, platform, root);
        });
    const ArchiveIndexCache cache(platform, support);
    QuickLibrary library(support);
    for (std::size_t i = 0; i < states.size(); ++i) {
        const std::string& root = roots.roots()[i];
        const RootState state = states[i].value_or(RootState());
        if (forgotten.contains(root)) {
            const bool mayHaveReturned = state.isConnected && !state.isIndexAbsent;
            if (mayHaveReturned && !forgottenPresent.contains(root)) return std::nullopt;
        } else if (!library.add(cache, root, state)) {
            return std::nullopt;
        }
    }
    return library;
}

bool QuickLibrary::add(const ArchiveIndexCache& cache, const std::string& root, const RootState& state) {
    if (state.isConnected && state.isIndexAbsent) return true;
    const ArchiveDigest::Files files = cache.digestFiles(root);
    const bool hasCopy = platform::lookAtFile(files.copy).presence != platform::FileLook::Presence::absent;
    if (!state.isConnected && !hasCopy) return true;
    auto digest = ArchiveDigest::open(files, root);
    if (!digest || (state.isConnected && !(state.index && digest->fits(*state.index)))) return false;
    if (digest->count() == 0) return true;
    // Which of two may be one archive seen twice takes more than a digest to tell.
    const auto isOfThatTime = [&](const Archive& other) {
        return other.digest.createdAt() == digest->createdAt();
    };
    if (std::ranges::any_of(archives_, isOfThatTime)) return false;
    archives_.push_back({root, std::move(*digest)});
    return true;
}

std::vector<QuickLibrary::Found> QuickLibrary::find(std::string_view name) const {
    std::vector<Found> found;
    const auto add = [&](std::size_t archive, ArchiveDigest::Position position) {
        found.push_back({archive, position, archives_[archive].digest.date(position)});
    };
    const std::uint64_t value = handleValue(name);
    for (std::size_t i = 0; i < archives_.size(); ++i) {
        for (const auto position : archives_[i].digest.withHandle({value, value})) {
            add(i, position);
            if (entry(found.back()).id() == name) return {found.back()};
        }
    }
    found = withRecordID(name);
    if (!found.empty()) return found;
    const auto range = handlesBeginningWith(name);
    for (std::size_t i = 0; range && i < archives_.size(); ++i) {
        std::vector<ArchiveDigest::Position> positions = archives_[i].digest.withHandle(*range);
        std::ranges::sort(positions);
        for (const auto position : positions) {
            add(i, position);
            const std::uint64_t handle = handleValue(entry(found.back()).id());
            if (handle < range->first || handle > range->last) throw DigestMisfit("digest: another handle");
        }
    }
    return found;
}

std::vector<QuickLibrary::Found> QuickLibrary::withRecordID(std::string_view id) const {
    std::vector<Found> found;
    for (std::size_t i = 0; i < archives_.size(); ++i) {
        const ArchiveDigest& digest = archives_[i].digest;
        if (const auto position = digest.withRecordID(id))
            found.push_back({i, *position, digest.date(*position)});
    }
    return found;
}

std::vector<ArchivedEntry> QuickLibrary::newest(const std::vector<std::string>& recordIDs,
                                                std::optional<std::int64_t> limit) const {
    struct Candidate {
        Found found;
        std::size_t number = 0; // of the id
    };

    const auto wanted = ArchiveDigest::wantedIDs(recordIDs);
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < archives_.size(); ++i) {
        const ArchiveDigest& digest = archives_[i].digest;
        digest.forEachWithRecordID(wanted, [&](ArchiveDigest::Position position, std::size_t number) {
            candidates.push_back({{i, position, digest.date(position)}, number});
        });
    }
    std::ranges::sort(candidates, [](const Candidate& a, const Candidate& b) {
        const Found& one = a.found;
        const Found& other = b.found;
        if (one.date != other.date) return one.date > other.date; // an absent one is less
        return std::pair(one.archive, one.position) < std::pair(other.archive, other.position);
    });
    std::vector<ArchivedEntry> entries;
    for (const Candidate& candidate : candidates) {
        if (limit && std::ssize(entries) >= *limit) break;
        ArchivedEntry entry = this->entry(candidate.found);
        if (entry.record.id == recordIDs[candidate.number]) entries.push_back(std::move(entry));
    }
    return entries;
}

ArchivedEntry QuickLibrary::entry(const Found& found) const {
    return archives_.at(found.archive).digest.entry(found.position);
}

std::string QuickLibrary::shortestHandle(std::string_view entryID) const {
    const std::uint64_t value = handleValue(entryID);
    std::size_t digits = shortestHandleDigits;
    for (const Archive& archive : archives_) digits = std::max(digits, archive.digest.digitsNeeded(value));
    return handleDigits(value, digits);
}

const MailSearchIndex* QuickLibrary::searchIndex(const std::string& root) const {
    const auto known = searchIndexes_.find(root);
    if (known != searchIndexes_.end()) return known->second.get();
    return searchIndexes_.emplace(root, MailSearchIndex::open(support_, root)).first->second.get();
}

std::vector<std::string> QuickLibrary::rootsByName() const {
    std::vector<std::string> roots;
    for (const Archive& archive : archives_) roots.push_back(archive.root);
    std::ranges::sort(roots);
    return roots;
}

QuickLibrary::Search QuickLibrary::search(std::string_view text) const {
    Search result;
    for (const std::string& root : rootsByName()) {
        // Not kept: what it read for this it doesn't need again.
        const auto index = MailSearchIndex::open(support_, root);
        if (index == nullptr) continue;
        if (const auto ids = index->searchIfReadable(text)) {
            for (const SharedText& id : *ids) result.ids.push_back(id.str());
        } else {
            result.unreadableRoots.push_back(root);
        }
    }
    std::ranges::sort(result.ids);
    result.ids.erase(std::ranges::unique(result.ids).begin(), result.ids.end());
    return result;
}

std::optional<std::string> QuickLibrary::body(std::string_view recordID) const {
    for (const std::string& root : rootsByName()) {
        const MailSearchIndex* const index = searchIndex(root);
        if (index == nullptr) continue;
        if (auto body = index->body(recordID)) return body;
    }
    return std::nullopt;
}

std::string QuickLibrary::presenceSignature() const {
    PresenceSignature signature;
    for (const Archive& archive : archives_) signature.add(archive.digest.presenceSignature());
    return signature.text();
}

} // namespace corvane
