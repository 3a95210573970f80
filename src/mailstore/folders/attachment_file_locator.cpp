#include "mailstore/folders/attachment_file_locator.h"

#include "mailstore/folders/folder_walk.h"
#include "mailstore/folders/store_location.h"
#include "platform/files/directory.h"
#include "platform/paths.h"

namespace corvane {

namespace {

constexpr int levelsSearched = 8;

std::string_view baseNameOf(const FileURL& messageFile) {
    return platform::withoutExtension(platform::lastPathComponent(messageFile.path()));
}

} // namespace

std::vector<StoredAttachment>
MailAttachmentFileLocator::Index::attachmentFiles(const FileURL& messageFile) const {
    for (const std::string& path : candidateAttachmentRoots(platform::parentPath(messageFile.path()))) {
        const auto root = roots_.find(path);
        if (root == roots_.end()) continue;
        auto files = root->second.files(baseNameOf(messageFile));
        if (!files.empty()) return files;
    }
    return {};
}

std::size_t MailAttachmentFileLocator::Index::folderCount() const {
    std::size_t count = 0;
    for (const auto& [path, root] : roots_) count += root.folderCount();
    return count;
}

MailAttachmentFileLocator::Index MailAttachmentFileLocator::makeIndex(const std::string& storeRoot) {
    Index index;
    mailstore::walkFolder(mailstore::latestMailVersionDirectory(storeRoot),
                          {.entersFolder =
                               [&](const std::string& path, std::string_view name) {
                                   if (name != "Attachments") return true;
                                   index.roots_.try_emplace(path, path);
                                   return false;
                               },
                           .visitsFile = [](const std::string&, std::string_view) { return true; }});
    return index;
}

std::vector<StoredAttachment> MailAttachmentFileLocator::attachmentFiles(const FileURL& messageFile,
                                                                         std::size_t maxVisitedItems) {
    for (const std::string& root : candidateAttachmentRoots(platform::parentPath(messageFile.path()))) {
        auto files = regularFiles(platform::joinPath(root, baseNameOf(messageFile)), maxVisitedItems);
        if (!files.empty()) return files;
    }
    return {};
}

std::vector<StoredAttachment> MailAttachmentFileLocator::regularFiles(const std::string& folder,
                                                                      std::size_t maxVisitedItems) {
    std::vector<StoredAttachment> files;
    std::size_t visited = 0;
    const auto isWithinLimit = [&] { return ++visited <= maxVisitedItems; };
    mailstore::walkFolder(
        folder, {.entersFolder = [&](const std::string&, std::string_view) { return isWithinLimit(); },
                 .visitsFile =
                     [&](const std::string& path, std::string_view) {
                         if (!isWithinLimit()) return false;
                         files.push_back({.url = FileURL(path), .size = platform::fileSize(path)});
                         return true;
                     }});
    return files;
}

std::vector<std::string> MailAttachmentFileLocator::candidateAttachmentRoots(std::string_view messageFolder) {
    std::vector<std::string> roots;
    const auto add = [&](std::string_view folder) {
        std::string root = platform::joinPath(folder, "Attachments");
        if (roots.empty() || roots.back() != root) roots.push_back(std::move(root));
    };
    std::string_view folder = messageFolder;
    for (int level = 0; level < levelsSearched && !folder.empty(); ++level) {
        add(folder);
        const std::string_view parent = platform::parentPath(folder);
        if (platform::lastPathComponent(folder) == "Messages") add(parent);
        if (parent == folder) break;
        folder = parent;
    }
    return roots;
}

} // namespace corvane
