#include "locations/loading/loaded_archives.h"

#include <algorithm>
#include <map>
#include <unordered_set>

#include "records/archived/stable_id.h"

namespace corvane {

namespace {

struct EntryKey {
    std::string_view root;
    std::string_view recordID;

    friend bool operator==(const EntryKey&, const EntryKey&) = default;
};

struct EntryKeyHash {
    std::size_t operator()(const EntryKey& key) const noexcept {
        const std::hash<std::string_view> hash;
        return hash(key.root) * 31 + hash(key.recordID);
    }
};

void dropRepeatedEntries(std::vector<ArchivedEntry>& entries) {
    std::unordered_set<EntryKey, EntryKeyHash> seen;
    seen.reserve(entries.size());
    std::erase_if(entries, [&](const ArchivedEntry& entry) {
        return !seen.insert({entry.locationRootPath, entry.record.id}).second;
    });
}

// The record's own characters where nothing is cut away.
SharedText sharedBaseID(const ArchivedEmailRecord& record, std::string_view base) {
    return base.size() == record.id.size() ? record.id : SharedText(base);
}

bool haveSharedIDs(const EmailArchiveIndex& a, const EmailArchiveIndex& b) {
    const bool isAShorter = a.records.size() < b.records.size();
    const EmailArchiveIndex& shorter = isAShorter ? a : b;
    const EmailArchiveIndex& longer = isAShorter ? b : a;
    std::unordered_set<std::string_view> ids;
    ids.reserve(longer.records.size());
    for (const ArchivedEmailRecord& record : longer.records) ids.insert(record.id);
    return std::ranges::all_of(shorter.records, [&](const auto& record) { return ids.contains(record.id); });
}

} // namespace

std::vector<bool> archivesThatStay(const std::vector<ComparedArchive>& archives,
                                   const std::function<bool(std::size_t, std::size_t)>& haveSharedIDs) {
    std::vector<bool> stays(archives.size(), true);
    std::multimap<Date, std::size_t> holders;
    for (std::size_t i = 0; i < archives.size(); ++i) {
        const auto [first, last] = holders.equal_range(archives[i].createdAt);
        const auto holder =
            std::find_if(first, last, [&](const auto& entry) { return haveSharedIDs(entry.second, i); });
        if (holder == last) {
            holders.emplace(archives[i].createdAt, i);
            continue;
        }
        const bool replaces = archives[i].connected && !archives[holder->second].connected;
        stays[replaces ? holder->second : i] = false;
        if (replaces) holder->second = i;
    }
    return stays;
}

std::vector<LoadedArchive> dedupeLoadedArchives(std::vector<LoadedArchive> archives) {
    std::vector<ComparedArchive> compared;
    for (const LoadedArchive& archive : archives)
        compared.push_back({archive.index.createdAt, archive.connected});
    const std::vector<bool> stays = archivesThatStay(compared, [&](std::size_t a, std::size_t b) {
        return haveSharedIDs(archives[a].index, archives[b].index);
    });
    std::vector<LoadedArchive> kept;
    for (std::size_t i = 0; i < archives.size(); ++i) {
        if (stays[i]) kept.push_back(std::move(archives[i]));
    }
    return kept;
}

SharedLibrary ArchivedLibrary::make(std::vector<ArchivedEntry> entries,
                                    const std::shared_ptr<const SharedTextSet>& earlierBaseIDs) {
    dropRepeatedEntries(entries);
    auto library = std::make_shared<ArchivedLibrary>();
    auto baseIDs = std::make_shared<SharedTextSet>();
    baseIDs->reserve(entries.size());
    library->positionByBaseID.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string_view base = baseID(entries[i].record);
        library->positionByBaseID[base] = i;
        if (!baseIDs->contains(base)) baseIDs->insert(sharedBaseID(entries[i].record, base));
    }
    library->entries = std::make_shared<const std::vector<ArchivedEntry>>(std::move(entries));
    const bool isEqual = earlierBaseIDs && *earlierBaseIDs == *baseIDs;
    library->baseIDs = isEqual ? earlierBaseIDs : std::move(baseIDs);
    return library;
}

const ArchivedEntry* ArchivedLibrary::entryByBaseID(std::string_view baseID) const {
    const auto found = positionByBaseID.find(baseID);
    return found == positionByBaseID.end() ? nullptr : &(*entries)[found->second];
}

void countEntries(std::vector<ArchiveLocation>& locations, const ArchivedLibrary& library) {
    std::unordered_map<std::string_view, std::int64_t> counts;
    for (const ArchivedEntry& entry : *library.entries) ++counts[entry.locationRootPath];
    for (ArchiveLocation& location : locations) location.count = counts[location.rootPath];
}

} // namespace corvane
