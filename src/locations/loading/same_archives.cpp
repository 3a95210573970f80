#include "locations/loading/same_archives.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace corvane {

namespace {

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

} // namespace corvane
