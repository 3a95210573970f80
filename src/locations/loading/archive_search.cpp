#include "locations/loading/archive_search.h"

#include <optional>

#include "search/mail_search_index.h"

namespace corvane {

ArchiveSearchResult searchIndexes(const SearchIndexTable& indexes,
                                  const std::map<std::string, std::int64_t>& counts, std::string_view query) {
    ArchiveSearchResult result;
    for (const auto& [root, index] : indexes) {
        auto ids = index->searchIfReadable(query);
        if (!ids) {
            result.unreadableRoots.push_back(root);
            continue;
        }
        result.ids.merge(*ids);
        const auto count = counts.find(root);
        if (count != counts.end() && index->lacksMostOf(static_cast<std::size_t>(count->second)))
            result.unpreparedRoots.push_back(root);
    }
    return result;
}

} // namespace corvane
