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
#include "locations/loading/archived_files.h"
#include "locations/loading/loaded_archives.h"
#include "locations/loading/same_archives.h"
#include "platform/files/file_look.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"
#include "records/stores/settings_keys.h"
#include "search/mail_search_index.h"
#include "text/trim.h"

namespace corvane {

namespace {

// Mail of an archive that is asked for to know that its files aren't all gone.
constexpr std::size_t mostFilesAskedFor = 16;

// To ask one mail costs as much as some tens of rows do when all are read.
constexpr std::size_t mailsAskedForOne = 4;
constexpr std::size_t usualShareAsked = 256;
constexpr std::size_t mostShareAsked = 64;
constexpr std::size_t alwaysAsked = 256;

// An absent date is less than any other.
bool isNewer(const QuickLibrary::Found& one, const QuickLibrary::Found& other) {
    if (one.date != other.date) return one.date > other.date;
    return std::pair(one.archive, one.position) < std::pair(other.archive, other.position);
}

// One of the first mails that the archive names is there. False says nothing of the others.
bool holdsFiles(PlaceLook& look, const ArchiveDigest::Files& files, const std::string& root) {
    const auto digest = ArchiveDigest::open(files, root);
    const std::size_t count = digest ? std::min(digest->count(), mostFilesAskedFor) : 0;
    for (ArchiveDigest::Position position = 0; position < count; ++position) {
        const std::string path = digest->entry(position).record.emlRelativePath.str();
        look.beginStep();
        if (platform::isSafeRelativePath(path) &&
            !isArchiveFileGone(look.files(), platform::joinPath(root, path)))
            return true;
    }
    return false;
}

} // namespace

// What is seen of a root, whose index is read only if it isn't that of the digest.
struct QuickLibrary::RootState {
    bool isConnected = false;
    bool isIndexAbsent = false;
    bool isIndexUnusable = false;
    std::optional<ArchiveDigest> digest{}; // of a connected archive that of its index
};

QuickLibrary::RootState QuickLibrary::lookAtRoot(PlaceLook& look, const platform::Platform& platform,
                                                 const std::string& root) {
    const ArchiveIndexCache cache(platform, CorvaneAppSupport(platform, look.files()));
    const ArchiveDigest::Files files = cache.digestFiles(root);
    RootState state;
    state.digest = ArchiveDigest::open(files, root);
    state.isConnected = isLocationConnected(platform, root);
    struct stat status{};
    if (!state.isConnected || look.isGivenUp()) return state;
    const bool isThere = look.files().stat(files.index, status) == 0;
    state.isIndexAbsent = !isThere && (errno == ENOENT || errno == ENOTDIR);
    state.isIndexUnusable = !isThere && !state.isIndexAbsent;
    if (!isThere || !state.digest || state.digest->fits(SourceStamp::of(status))) return state;
    state.isIndexUnusable = !cache.loadIndexWithCache(root, root, true, [&look] { look.beginStep(); });
    state.digest = ArchiveDigest::open(files, root);
    const bool isStillThere = !look.isGivenUp() && look.files().stat(files.index, status) == 0;
    if (!isStillThere || (state.digest && !state.digest->isOf(SourceStamp::of(status)))) state.digest.reset();
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
    auto states =
        looks.askAll<RootState>(roots.roots(), [&platform](PlaceLook& look, const std::string& root) {
            return lookAtRoot(look, platform, root);
        });
    const ArchiveIndexCache cache(platform, support);
    QuickLibrary library(support);
    for (std::size_t i = 0; i < states.size(); ++i) {
        const std::string& root = roots.roots()[i];
        // Of a place that doesn't answer nobody knows the index.
        RootState state = std::move(states[i]).value_or(RootState{.isIndexUnusable = true});
        if (forgotten.contains(root)) {
            const bool mayHaveReturned = state.isConnected && !state.isIndexAbsent;
            if (mayHaveReturned && !forgottenPresent.contains(root)) return std::nullopt;
        } else if (!library.add(cache, root, std::move(state))) {
            return std::nullopt;
        }
    }
    if (!library.dropRepeatedArchives(cache, looks)) return std::nullopt;
    return library;
}

bool QuickLibrary::add(const ArchiveIndexCache& cache, const std::string& root, RootState state) {
    const auto leaveOut = [&] {
        unreadableRoots_.push_back(root);
        return true;
    };
    if (state.isConnected && state.isIndexAbsent) return true;
    if (state.isConnected && state.isIndexUnusable) return leaveOut();
    const ArchiveDigest::Files files = cache.digestFiles(root);
    const bool hasCopy = platform::lookAtFile(files.copy).presence != platform::FileLook::Presence::absent;
    if (!state.isConnected && !hasCopy) return !state.isIndexUnusable || leaveOut();
    // A place that doesn't answer has said nothing of its digest either.
    if (!state.isConnected && !state.digest) state.digest = ArchiveDigest::open(files, root);
    if (!state.digest) return false;
    if (state.digest->isOfUnusableIndex()) return state.isConnected && leaveOut();
    if (state.digest->count() == 0) return true;
    archives_.push_back({root, std::move(*state.digest), state.isConnected});
    return true;
}

bool QuickLibrary::dropRepeatedArchives(const ArchiveIndexCache& cache, PlaceLooks& looks) {
    std::map<Date, int> numbers;
    for (const Archive& archive : archives_) ++numbers[archive.digest.createdAt()];
    std::vector<ComparedArchive> compared;
    for (const Archive& archive : archives_) {
        compared.push_back({archive.digest.createdAt(), archive.isConnected});
        if (!archive.isConnected || numbers[archive.digest.createdAt()] == 1) continue;
        const auto holds =
            looks.ask<bool>(archive.root, [files = cache.digestFiles(archive.root), root = archive.root](
                                              PlaceLook& look) { return holdsFiles(look, files, root); });
        if (!holds.value_or(false)) return false;
    }
    const std::vector<bool> stays = archivesThatStay(compared, [this](std::size_t a, std::size_t b) {
        return archives_[a].digest.sharesIDsWith(archives_[b].digest);
    });
    std::vector<Archive> kept;
    for (std::size_t i = 0; i < archives_.size(); ++i) {
        if (stays[i]) kept.push_back(std::move(archives_[i]));
    }
    archives_ = std::move(kept);
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

void QuickLibrary::visitNewest(const std::vector<SharedText>& recordIDs, std::optional<std::int64_t> limit,
                               const Visit& visit) const {
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
    std::ranges::sort(candidates, isNewer, &Candidate::found);
    std::int64_t visited = 0;
    for (const Candidate& candidate : candidates) {
        if (limit && visited >= *limit) break;
        ArchivedEntry entry = this->entry(candidate.found);
        if (entry.record.id != recordIDs[candidate.number]) continue;
        visit(std::move(entry));
        ++visited;
    }
}

std::size_t QuickLibrary::size() const {
    std::size_t size = 0;
    for (const Archive& archive : archives_) size += archive.digest.count();
    return size;
}

// Never keeps many more than are wanted.
std::vector<QuickLibrary::Found> QuickLibrary::newestOfAll(std::size_t count) const {
    std::vector<Found> newest;
    const auto cut = [&] {
        if (newest.size() <= count) return;
        const auto middle = newest.begin() + static_cast<std::ptrdiff_t>(count);
        std::ranges::nth_element(newest, middle, isNewer);
        newest.erase(middle, newest.end());
    };
    for (std::size_t i = 0; i < archives_.size(); ++i) {
        const ArchiveDigest& digest = archives_[i].digest;
        for (ArchiveDigest::Position position = 0; position < digest.count(); ++position) {
            newest.push_back({i, position, digest.date(position)});
            if (newest.size() > 4 * count) cut();
        }
    }
    cut();
    std::ranges::sort(newest, isNewer);
    return newest;
}

// Empty where an index is asked more quickly, or can't be.
std::vector<search::RecordTest> QuickLibrary::testsOf(std::string_view text) const {
    std::vector<search::RecordTest> tests;
    for (const Archive* archive : archivesByName()) {
        const MailSearchIndex* const index = searchIndex(archive->root);
        // Which the search tells.
        if (index == nullptr || index->lacksMostOf(archive->digest.count())) return {};
        if (tests.empty()) {
            if (auto ids = index->searchWithoutScan(text)) {
                answer_ = {std::string(text), archive->root, std::move(*ids)};
                return {};
            }
        }
        tests.push_back(index->recordTest(text));
        if (!tests.back()) return {};
    }
    return tests;
}

std::optional<std::vector<ArchivedEntry>> QuickLibrary::newestHolding(std::string_view query,
                                                                      std::int64_t limit) const {
    const std::string_view text = text::trimWhitespaceAndNewlines(query);
    const std::size_t most = std::max(size() / mostShareAsked, alwaysAsked) / mailsAskedForOne;
    if (text.empty() || limit < 1 || static_cast<std::size_t>(limit) > most) return std::nullopt;
    std::vector<search::RecordTest> tests = testsOf(text);
    if (tests.empty()) return std::nullopt;
    std::vector<ArchivedEntry> found;
    const std::size_t patience =
        std::max(static_cast<std::size_t>(limit) * mailsAskedForOne, size() / usualShareAsked);
    for (const Found& candidate : newestOfAll(patience)) {
        ArchivedEntry entry = this->entry(candidate);
        // A record that any of the indexes finds counts in every archive, as it does for a search.
        for (search::RecordTest& test : tests) {
            const auto holds = test.holds(entry.record.id);
            if (!holds) return std::nullopt;
            if (!*holds) continue;
            found.push_back(std::move(entry));
            break;
        }
        if (std::ssize(found) == limit) return found;
    }
    return patience >= size() ? std::optional(std::move(found)) : std::nullopt;
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

std::vector<const QuickLibrary::Archive*> QuickLibrary::archivesByName() const {
    std::vector<const Archive*> archives;
    for (const Archive& archive : archives_) archives.push_back(&archive);
    std::ranges::sort(archives, {}, &Archive::root);
    return archives;
}

std::optional<SharedTextSet> QuickLibrary::searchIn(const MailSearchIndex& index, const std::string& root,
                                                    std::string_view text) const {
    if (answer_ && answer_->root == root && answer_->text == text) return answer_->ids;
    return index.searchIfReadable(text);
}

QuickLibrary::Search QuickLibrary::search(std::string_view query) const {
    const std::string_view text = text::trimWhitespaceAndNewlines(query);
    Search result;
    for (const Archive* archive : archivesByName()) {
        // Not kept: what it read for this it doesn't need again.
        const auto index = MailSearchIndex::open(support_, archive->root);
        const auto ids = index == nullptr ? std::nullopt : searchIn(*index, archive->root, text);
        if (!ids) {
            result.unreadableRoots.push_back(archive->root);
            continue;
        }
        result.ids.insert(result.ids.end(), ids->begin(), ids->end());
        if (index->lacksMostOf(archive->digest.count())) result.unpreparedRoots.push_back(archive->root);
    }
    std::ranges::sort(result.ids);
    result.ids.erase(std::ranges::unique(result.ids).begin(), result.ids.end());
    return result;
}

std::optional<std::string> QuickLibrary::body(std::string_view recordID) const {
    for (const Archive* archive : archivesByName()) {
        const MailSearchIndex* const index = searchIndex(archive->root);
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
