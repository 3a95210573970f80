// The archives as one load found them, and the library that is made of them. Pure values, made in the
// background.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "records/archived/archive_records.h"
#include "text/shared_text.h"

namespace corvane {

class MailSearchIndex;
struct RootFiles;

struct LoadedArchive {
    std::string rootPath;
    bool connected = false; // and holds files
    EmailArchiveIndex index;
    std::shared_ptr<const MailSearchIndex> searchIndex{}; // null when it can't be opened
    std::shared_ptr<const RootFiles> files{};             // null unless the archive could be looked at
    ArchiveLocation::Kind kind = ArchiveLocation::Kind::local;
};

// The search index of each loaded archive that has one, by root. Immutable, shared between threads.
using SearchIndexTable = std::map<std::string, std::shared_ptr<const MailSearchIndex>, std::less<>>;
using SharedSearchIndexes = std::shared_ptr<const SearchIndexTable>;

// All archived mail with its lookups. Immutable, shared between threads.
struct ArchivedLibrary {
    SharedEntryList entries = std::make_shared<const std::vector<ArchivedEntry>>();
    std::shared_ptr<const SharedTextSet> baseIDs = std::make_shared<const SharedTextSet>();
    // Positions in `entries`, the last of each base id. The keys are characters of the entries.
    std::unordered_map<std::string_view, std::size_t> positionByBaseID;

    // Entry ids are unique from here on: of repeated record ids of one root, which no sound index has, the
    // first stays. A set of base ids that equals that of the earlier library is that very set: whoever
    // depends on it sees by the pointer that it hasn't changed.
    static std::shared_ptr<const ArchivedLibrary>
    make(std::vector<ArchivedEntry> entries, const std::shared_ptr<const ArchivedLibrary>& earlier = nullptr);

    // Null for one that isn't in the library.
    [[nodiscard]] const ArchivedEntry* entryByBaseID(std::string_view baseID) const;
};

using SharedLibrary = std::shared_ptr<const ArchivedLibrary>;

// Where the entries of each archive stand, by root. Those of one archive stand together.
std::map<std::string_view, std::span<const ArchivedEntry>>
entriesByRoot(const std::vector<ArchivedEntry>& entries);

// Sets each location's count to the entries that it has in the library.
void countEntries(std::vector<ArchiveLocation>& locations, const ArchivedLibrary& library);

} // namespace corvane
