// Which of several folders are one archive, copied or seen through two paths: the library has its mail once.
// Pure, any thread.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "locations/loading/loaded_archives.h"
#include "records/values.h"

namespace corvane {

// An archive as it is compared with others.
struct ComparedArchive {
    Date createdAt{};
    bool connected = false; // and holds files
};

// Those that stay of archives of which some may be the same, by position. `haveSharedIDs` is asked of two
// with one `createdAt` whether the ids of one are among those of the other.
std::vector<bool> archivesThatStay(const std::vector<ComparedArchive>& archives,
                                   const std::function<bool(std::size_t, std::size_t)>& haveSharedIDs);

// Two folders are the same archive, copied or seen through two paths, when their indexes have the same
// `createdAt` and the ids of one are among those of the other: two runs may begin in one second. The first
// stays, but one that is connected beats one that isn't. Order is kept.
std::vector<LoadedArchive> dedupeLoadedArchives(std::vector<LoadedArchive> archives);

} // namespace corvane
