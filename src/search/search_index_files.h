// Where the search databases lie: directly in the support folder, one for each archive root, named by a hash
// of the root's path. Functions on any thread; they touch the disk.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "records/file_url.h"
#include "records/stores/app_support.h"

namespace corvane::search {

// The root as it is hashed: standardized, without a "/" at its end.
std::string normalizedKeyPath(std::string_view archiveRoot);

// "search-<hash>.sqlite".
std::string databaseFileName(std::string_view archiveRoot);

// The database of that archive, which need not exist; absent when the support folder can't be made. Takes
// over a database that an older version named after the path with a slash at its end.
std::optional<FileURL> databaseURL(const CorvaneAppSupport& support, std::string_view archiveRoot);

// Removes the databases of all other archives with their side files. Failures are ignored.
void pruneOrphans(const CorvaneAppSupport& support, std::span<const std::string> liveRoots);

} // namespace corvane::search
