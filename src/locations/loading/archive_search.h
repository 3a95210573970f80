// The full-text search over the indexes of several archives. Any thread; touches the disk.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "locations/loading/loaded_archives.h"
#include "text/shared_text.h"

namespace corvane {

struct ArchiveSearchResult {
    SharedTextSet ids;                        // of the records that hold the text
    std::vector<std::string> unreadableRoots; // of archives whose index couldn't be asked
    std::vector<std::string> unpreparedRoots; // of those most of whose mail isn't in their index yet
};

// `counts`: the mails of each archive.
ArchiveSearchResult searchIndexes(const SearchIndexTable& indexes,
                                  const std::map<std::string, std::int64_t>& counts, std::string_view query);

} // namespace corvane
