#include "mailstore/attachment_file_locator.h"

#include <algorithm>

#include "mailstore/folder_walk.h"
#include "mailstore/store_location.h"
#include "platform/directory.h"
#include "platform/parallel.h"
#include "platform/paths.h"
#include "text/collation.h"

namespace corvane {

namespace {

constexpr int levelsSearched = 8;

std::vector<std::string> candidateRootsIn(std::string_view messageFolder) {
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

std::vector<std::string> directoriesIn(const std::string& path) {
    std::vector<std::string> names;
    auto entries = platform::listDirectory(path, platform::HiddenEntries::skip);
    if (!entries) return names;
    for (auto& entry : *entries) {
        if (entry.kind == platform::EntryKind::directory) names.push_back(std::move(entry.name));
    }
    return names;
}

} // namespace

std::vector<const MailAttachmentFileLocator::Index::Root*>
MailAttachmentFileLocator::Index::rootsOf(std::string_view messageFolder) const {
    const auto known = rootsByFolder_.find(messageFolder);
    if (known != rootsByFolder_.end()) return known->second;
    std::vector<const Root*> roots;
    if (rootsByPath_.empty()) return roots;
    for (const std::string& path : candidateRootsIn(messageFolder)) {
        const auto root = rootsByPath_.find(path);
        if (root != rootsByPath_.end()) roots.push_back(root->second);
    }
    return roots;
}

std::vector<FileURL> MailAttachmentFileLocator::Index::attachmentFiles(const FileURL& messageFile) const {
    const std::string_view path = messageFile.path();
    const std::string_view baseName = platform::withoutExtension(platform::lastPathComponent(path));
    for (const Root* root : rootsOf(platform::parentPath(path))) {
        if (!std::ranges::binary_search(root->messageFolders, baseName, std::less<>())) continue;
        auto files = filesInMessageFolder(platform::joinPath(root->path, baseName));
        if (!files.empty()) return files;
    }
    return {};
}

MailAttachmentFileLocator::Index
MailAttachmentFileLocator::makeIndex(const std::vector<FileURL>& messageFiles) {
    std::unordered_map<std::string, std::vector<std::string>, TextHash, TextEqual> candidatesByFolder;
    std::vector<Index::Root> roots;
    std::unordered_map<std::string, std::size_t> rootNumbers;
    for (const FileURL& file : messageFiles) {
        const std::string_view folder = platform::parentPath(file.path());
        if (candidatesByFolder.contains(folder)) continue;
        auto candidates = candidateRootsIn(folder);
        for (const std::string& path : candidates) {
            if (rootNumbers.try_emplace(path, roots.size()).second)
                roots.push_back({.path = path, .messageFolders = {}});
        }
        candidatesByFolder.emplace(folder, std::move(candidates));
    }
    platform::parallelFor(0, roots.size(),
                          [&](std::size_t i) { roots[i].messageFolders = directoriesIn(roots[i].path); });

    Index index;
    index.roots_ = std::move(roots);
    for (const auto& [folder, candidates] : candidatesByFolder) {
        std::vector<const Index::Root*> found;
        for (const std::string& path : candidates) {
            const Index::Root& root = index.roots_[rootNumbers.at(path)];
            if (!root.messageFolders.empty()) found.push_back(&root);
        }
        if (!found.empty()) index.rootsByFolder_.emplace(folder, std::move(found));
    }
    for (const Index::Root& root : index.roots_) index.folderCount_ += root.messageFolders.size();
    return index;
}

MailAttachmentFileLocator::Index MailAttachmentFileLocator::makeIndex(const std::string& storeRoot) {
    Index index;
    mailstore::walkFolder(mailstore::latestMailVersionDirectory(storeRoot),
                          {.entersFolder =
                               [&](const std::string& path, std::string_view name) {
                                   if (name != "Attachments") return true;
                                   index.roots_.push_back(
                                       {.path = path, .messageFolders = directoriesIn(path)});
                                   return false;
                               },
                           .visitsFile = [](const std::string&, std::string_view) { return true; }});
    std::erase_if(index.roots_, [](const Index::Root& root) { return root.messageFolders.empty(); });
    for (const Index::Root& root : index.roots_) {
        index.rootsByPath_.emplace(root.path, &root);
        index.folderCount_ += root.messageFolders.size();
    }
    return index;
}

std::vector<FileURL> MailAttachmentFileLocator::attachmentFiles(const FileURL& messageFile,
                                                                std::size_t maxVisitedItems) {
    const std::string_view path = messageFile.path();
    const std::string_view baseName = platform::withoutExtension(platform::lastPathComponent(path));
    for (const std::string& root : candidateAttachmentRoots(path)) {
        auto files = regularFiles(platform::joinPath(root, baseName), maxVisitedItems);
        if (!files.empty()) return files;
    }
    return {};
}

std::vector<FileURL> MailAttachmentFileLocator::regularFiles(const std::string& folder,
                                                             std::size_t maxVisitedItems) {
    std::vector<FileURL> files;
    std::size_t visited = 0;
    const auto isWithinLimit = [&] { return ++visited <= maxVisitedItems; };
    mailstore::walkFolder(
        folder, {.entersFolder = [&](const std::string&, std::string_view) { return isWithinLimit(); },
                 .visitsFile =
                     [&](const std::string& path, std::string_view) {
                         if (!isWithinLimit()) return false;
                         files.emplace_back(SharedText(path));
                         return true;
                     }});
    return files;
}

std::vector<std::string>
MailAttachmentFileLocator::candidateAttachmentRoots(std::string_view messageFilePath) {
    return candidateRootsIn(platform::parentPath(messageFilePath));
}

std::vector<FileURL> MailAttachmentFileLocator::filesInMessageFolder(const std::string& folder) {
    std::vector<FileURL> files;
    const auto collect = [&](const auto& self, const std::string& path, int levelsBelow) -> void {
        const auto entries = platform::listDirectory(path, platform::HiddenEntries::skip);
        if (!entries) return;
        for (const auto& [name, kind] : *entries) {
            const std::string inside = platform::joinPath(path, name);
            if (kind == platform::EntryKind::regularFile) files.emplace_back(SharedText(inside));
            if (kind == platform::EntryKind::directory && levelsBelow > 0)
                self(self, inside, levelsBelow - 1);
        }
    };
    collect(collect, folder, 1);
    std::ranges::stable_sort(files, [](const FileURL& a, const FileURL& b) {
        return text::naturalCompare(a.lastPathComponent(), b.lastPathComponent()) < 0;
    });
    return files;
}

} // namespace corvane
