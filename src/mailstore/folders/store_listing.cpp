#include "mailstore/folders/store_listing.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <dirent.h>

#include "mailstore/folders/attachment_file_locator.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/seconds_counter.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "text/charsets/encoding.h"

namespace corvane {

namespace {

constexpr std::string_view messageSuffix = ".emlx";
constexpr std::string_view attachmentsName = "Attachments";
constexpr int deepestFolder = 40;

// Only the exact spelling: no sign, no leading zero.
std::optional<std::int64_t> rowIDOfName(std::string_view name) {
    if (!name.ends_with(messageSuffix) || name.front() < '1' || name.front() > '9') return std::nullopt;
    return text::parseInteger(name.substr(0, name.size() - messageSuffix.size()));
}

// `visitOther` gets the entries that are no message files.
template <class VisitOther>
std::optional<std::vector<std::int64_t>> listMessages(const std::string& folder,
                                                      const VisitOther& visitOther) {
    std::vector<std::int64_t> rowIDs;
    const bool isComplete = platform::visitDirectory(folder, [&](std::string_view name, unsigned char type) {
        const auto rowID = rowIDOfName(name);
        if (!rowID) {
            visitOther(name, type);
            return;
        }
        const bool mayBeLink = type == DT_LNK || type == DT_UNKNOWN;
        if (type == DT_REG || (mayBeLink && platform::isRegularFile(platform::joinPath(folder, name))))
            rowIDs.push_back(*rowID);
    });
    if (!isComplete && platform::isDirectory(folder)) return std::nullopt;
    std::ranges::sort(rowIDs);
    return rowIDs;
}

} // namespace

// A folder to list, and the attachment folders in those above it, nearest first, null where one has none.
struct StoreListing::Walk {
    std::string folder;
    int depth = 0;
    mailstore::AttachmentRoots rootsAbove;
};

std::string StoreListing::MessageFolder::filePath(std::int64_t rowID) const {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), rowID).ptr;
    std::string file;
    file.reserve(path.size() + digits.size() + messageSuffix.size());
    file.append(path).append("/").append(digits.begin(), end).append(messageSuffix);
    return file;
}

bool StoreListing::MessageFolder::hasFile(std::int64_t rowID) const {
    return rowIDs && rowID > 0 ? std::ranges::binary_search(*rowIDs, rowID)
                               : platform::isRegularFile(filePath(rowID));
}

StoreListing::StoreListing(const std::string& rootPath)
  : versionDirectory_(mailstore::latestMailVersionDirectory(rootPath)) {}

void StoreListing::prefetch(const std::stop_token& stop,
                            const std::function<bool(std::string_view account)>& isWanted) {
    const text::MutexLock lock(mutex_);
    mailstore::AttachmentRoots roots;
    for (const std::string& path : MailAttachmentFileLocator::candidateAttachmentRoots(versionDirectory_))
        roots.push_back(attachmentRoot(path));
    std::vector<Walk> pending;
    platform::visitDirectory(versionDirectory_, [&](std::string_view name, unsigned char type) {
        if (type == DT_DIR && !name.starts_with('.') && name != attachmentsName && isWanted(name))
            pending.push_back({platform::joinPath(versionDirectory_, name), 1, roots});
    });
    while (!pending.empty() && !stop.stop_requested()) {
        Walk next = std::move(pending.back());
        pending.pop_back();
        if (platform::lastPathComponent(next.folder) == "Messages")
            addMessageFolder(next);
        else if (next.depth < deepestFolder)
            walk(std::move(next), pending);
    }
    const SecondsCounter elapsed(attachmentSeconds_);
    for (auto& [path, root] : attachmentRoots_) root->readAhead(stop);
}

// Neither hidden folders nor those of attachments hold messages.
void StoreListing::walk(Walk next, std::vector<Walk>& pending) {
    std::vector<std::string> subfolders;
    bool hasAttachments = false;
    platform::visitDirectory(next.folder, [&](std::string_view name, unsigned char type) {
        if (name == attachmentsName)
            hasAttachments = type != DT_REG;
        else if (type == DT_DIR && !name.starts_with('.'))
            subfolders.emplace_back(name);
    });
    const std::string attachments = platform::joinPath(next.folder, attachmentsName);
    next.rootsAbove.insert(next.rootsAbove.begin(), hasAttachments ? attachmentRoot(attachments) : nullptr);
    for (const std::string& name : subfolders)
        pending.push_back({platform::joinPath(next.folder, name), next.depth + 1, next.rootsAbove});
}

void StoreListing::addMessageFolder(const Walk& walk) {
    const auto [entry, isNew] = messageFolders_.try_emplace(walk.folder);
    MessageFolder& folder = entry->second;
    folder.path = walk.folder;
    bool hasAttachments = false;
    folder.rowIDs = listMessages(walk.folder, [&](std::string_view name, unsigned char type) {
        if (name == attachmentsName) hasAttachments = type != DT_REG;
    });
    const auto candidates = MailAttachmentFileLocator::candidateAttachmentRoots(walk.folder);
    mailstore::AttachmentRoots roots = walk.rootsAbove;
    roots.insert(roots.begin(), hasAttachments ? attachmentRoot(candidates.front()) : nullptr);
    if (roots.size() > candidates.size()) roots.resize(candidates.size());
    std::erase(roots, nullptr);
    folder.attachmentRoots = std::move(roots);
}

// Null for a folder without folders of messages.
const AttachmentRoot* StoreListing::attachmentRoot(const std::string& path) {
    auto& root = attachmentRoots_[path];
    if (!root) root = std::make_unique<AttachmentRoot>(path);
    return root->folderCount() > 0 ? root.get() : nullptr;
}

// The same, listing without the lock: of two threads that list a folder, the first one's listing stands.
const AttachmentRoot* StoreListing::attachmentRootAtNeed(const std::string& path) {
    {
        const text::MutexLock lock(mutex_);
        if (attachmentRoots_.contains(path)) return attachmentRoot(path);
    }
    auto listed = std::make_unique<AttachmentRoot>(path);
    const text::MutexLock lock(mutex_);
    attachmentRoots_.try_emplace(path, std::move(listed));
    return attachmentRoot(path);
}

const StoreListing::MessageFolder& StoreListing::messageFolder(const std::string& path) {
    {
        const text::MutexLock lock(mutex_);
        if (const auto known = messageFolders_.find(path); known != messageFolders_.end())
            return known->second;
    }
    MessageFolder listed{.path = path,
                         .rowIDs = listMessages(path, [](std::string_view, unsigned char) {}),
                         .attachmentRoots = {}};
    const text::MutexLock lock(mutex_);
    return messageFolders_.try_emplace(path, std::move(listed)).first->second;
}

const mailstore::AttachmentRoots& StoreListing::attachmentRoots(const MessageFolder& folder) {
    const auto markUsed = [](const mailstore::AttachmentRoots& roots) {
        for (const AttachmentRoot* root : roots) root->markUsed();
    };
    {
        const text::MutexLock lock(mutex_);
        if (const auto& known = messageFolders_.at(folder.path).attachmentRoots) {
            markUsed(*known);
            return *known;
        }
    }
    mailstore::AttachmentRoots found;
    for (const std::string& path : MailAttachmentFileLocator::candidateAttachmentRoots(folder.path)) {
        if (const AttachmentRoot* root = attachmentRootAtNeed(path)) found.push_back(root);
    }
    markUsed(found);
    const text::MutexLock lock(mutex_);
    auto& roots = messageFolders_.at(folder.path).attachmentRoots;
    if (!roots) roots = std::move(found);
    return *roots;
}

std::size_t StoreListing::attachmentFolderCount() const {
    const text::MutexLock lock(mutex_);
    std::size_t count = 0;
    for (const auto& [path, root] : attachmentRoots_) count += root->isUsed() ? root->folderCount() : 0;
    return count;
}

} // namespace corvane
