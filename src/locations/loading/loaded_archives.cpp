#include "locations/loading/loaded_archives.h"

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

} // namespace

SharedLibrary ArchivedLibrary::make(std::vector<ArchivedEntry> entries, const SharedLibrary& earlier) {
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
    const bool areEqual = earlier && *earlier->baseIDs == *baseIDs;
    library->baseIDs = areEqual ? earlier->baseIDs : std::move(baseIDs);
    return library;
}

const ArchivedEntry* ArchivedLibrary::entryByBaseID(std::string_view baseID) const {
    const auto found = positionByBaseID.find(baseID);
    return found == positionByBaseID.end() ? nullptr : &(*entries)[found->second];
}

std::map<std::string_view, std::span<const ArchivedEntry>>
entriesByRoot(const std::vector<ArchivedEntry>& entries) {
    std::map<std::string_view, std::span<const ArchivedEntry>> ranges;
    for (std::size_t first = 0, end = 0; first < entries.size(); first = end) {
        const SharedText& root = entries[first].locationRootPath;
        while (end < entries.size() && entries[end].locationRootPath == root) ++end;
        ranges[root] = std::span(entries).subspan(first, end - first);
    }
    return ranges;
}

void countEntries(std::vector<ArchiveLocation>& locations, const ArchivedLibrary& library) {
    std::unordered_map<std::string_view, std::int64_t> counts;
    for (const ArchivedEntry& entry : *library.entries) ++counts[entry.locationRootPath];
    for (ArchiveLocation& location : locations) location.count = counts[location.rootPath];
}

} // namespace corvane
