#include "locations/loading/archive_search.h"

#include <optional>

#include "search/mail_search_index.h"

namespace corvane {

ArchiveSearchResult searchIndexes(const SearchIndexTable& indexes, std::string_view query) {
    ArchiveSearchResult result;
    for (const auto& [root, index] : indexes) {
        if (index->isEmpty())
            result.unpreparedRoots.push_back(root);
        else if (auto ids = index->searchIfReadable(query))
            result.ids.merge(*ids);
        else
            result.unreadableRoots.push_back(root);
    }
    return result;
}

} // namespace corvane
