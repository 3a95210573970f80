#include "mailstore/folders/attachment_root.h"

#include <algorithm>

#include "platform/files/directory.h"
#include "platform/paths.h"
#include "text/charsets/encoding.h"
#include "text/collation.h"

namespace corvane {

AttachmentRoot::AttachmentRoot(std::string path)
  : path_(std::move(path)) {
    auto entries = platform::listDirectory(path_, platform::HiddenEntries::skip);
    if (!entries) return;
    for (auto& entry : *entries) {
        if (entry.kind != platform::EntryKind::directory) continue;
        if (const auto rowID = text::parseInteger(entry.name)) rowIDs_.push_back(*rowID);
        folders_.push_back({.name = std::move(entry.name), .files = {}});
    }
    std::ranges::sort(rowIDs_);
}

std::span<const std::int64_t> AttachmentRoot::rowsBetween(std::int64_t first, std::int64_t end) const {
    const auto from = std::ranges::lower_bound(rowIDs_, first);
    return {from, std::ranges::lower_bound(from, rowIDs_.end(), end)};
}

void AttachmentRoot::readAhead(const std::stop_token& stop) {
    for (MessageFolder& folder : folders_) {
        if (stop.stop_requested()) return;
        folder.files = read(folder);
    }
}

std::vector<StoredAttachment> AttachmentRoot::files(std::string_view baseName) const {
    const auto folder = std::ranges::lower_bound(folders_, baseName, std::less<>(), &MessageFolder::name);
    if (folder == folders_.end() || folder->name != baseName) return {};
    return folder->files ? *folder->files : read(*folder);
}

std::vector<StoredAttachment> AttachmentRoot::read(const MessageFolder& folder) const {
    std::vector<StoredAttachment> files;
    for (const auto& [path, size] : platform::listFiles(platform::joinPath(path_, folder.name), 1))
        files.push_back({.url = FileURL(SharedText(path)), .size = size});
    std::ranges::stable_sort(files, [](const StoredAttachment& a, const StoredAttachment& b) {
        return text::naturalCompare(a.url.lastPathComponent(), b.url.lastPathComponent()) < 0;
    });
    return files;
}

namespace mailstore {

std::vector<StoredAttachment> attachmentFiles(const AttachmentRoots& roots, std::string_view baseName) {
    for (const AttachmentRoot* root : roots) {
        auto files = root->files(baseName);
        if (!files.empty()) return files;
    }
    return {};
}

} // namespace mailstore

} // namespace corvane
