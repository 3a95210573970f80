#include "listing/file_existence.h"

#include <algorithm>

#include <dirent.h>

#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane {

const FileExistence::Folder& FileExistence::folder(std::string_view path) {
    if (last_ != nullptr && lastPath_ == path) return *last_;
    auto known = folders_.find(path);
    if (known == folders_.end()) {
        known = folders_.emplace(std::string(path), Folder()).first;
        platform::visitDirectory(known->first, [&](std::string_view name, unsigned char dType) {
            known->second.push_back({std::string(name), dType == DT_LNK || dType == DT_UNKNOWN});
        });
        std::ranges::sort(known->second, {}, &Entry::name);
    }
    lastPath_ = known->first;
    last_ = &known->second;
    return *last_;
}

bool FileExistence::exists(const SharedText& path) {
    const Folder& listing = folder(platform::parentPath(path));
    const std::string_view name = platform::lastPathComponent(path);
    const auto entry = std::ranges::lower_bound(listing, name, {}, &Entry::name);
    if (entry == listing.end() || entry->name != name) return false;
    return !entry->needsLook || platform::fileExists(path.str());
}

bool FileExistence::isLocallyAvailable(const MailMessageRecord& message) {
    if (exists(message.fileURL.path())) return true;
    if (!message.relatedMessageFileURLs) return false;
    for (const FileURL& url : *message.relatedMessageFileURLs) {
        if (exists(url.path())) return true;
    }
    return false;
}

} // namespace corvane
