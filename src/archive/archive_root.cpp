#include "archive/archive_root.h"

#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane::archive {

namespace {

// With a '/' at the end, so that one folder's text can't be the beginning of its neighbour's.
std::string resolved(const std::string& folder) {
    const auto path = platform::resolvedPath(folder);
    return path ? platform::joinPath(*path, "") : std::string();
}

} // namespace

std::string ArchiveRoot::at(std::string_view relativePath) const {
    return platform::joinPath(path_, relativePath);
}

bool ArchiveRoot::holdsFolder(const std::string& folder) {
    if (resolved_.empty()) resolved_ = resolved(path_);
    return !resolved_.empty() && resolved(folder).starts_with(resolved_);
}

} // namespace corvane::archive
