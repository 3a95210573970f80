#include "mailstore/folders/store_listing.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <dirent.h>

#include "mailstore/folders/attachment_file_locator.h"
#include "mailstore/folders/store_location.h"
#include "mailstore/seconds_counter.h"
#include "platform/files/directory.h"
#include "platform/files/file_look.h"
#include "platform/paths.h"
#include "text/charsets/encoding.h"

namespace corvane {

namespace {

constexpr std::string_view messageSuffix = ".emlx";
constexpr std::string_view partialSuffix = ".partial.emlx";
constexpr std::string_view attachmentsName = "Attachments";
constexpr int deepestFolder = 40;

// Only the exact spelling: no sign, no leading zero.
std::optional<std::int64_t> rowIDOfName(std::string_view name, std::string_view suffix) {
    if (!name.ends_with(suffix) || name.front() < '1' || name.front() > '9') return std::nullopt;
    return text::parseInteger(name.substr(0, name.size() - suffix.size()));
}

// Fills in the rows of a folder. `visitOther` gets the entries that are no files of messages.
template <class VisitOther>
void listMessages(StoreListing::MessageFolder& folder, const VisitOther& visitOther) {
    std::vector<std::int64_t> rowIDs;
    const auto isFile = [&](std::string_view name, unsigned char type) {
        const bool mayBeLink = type == DT_LNK || type == DT_UNKNOWN;
        return type == DT_REG ||
               (mayBeLink && platform::isRegularFile(platform::joinPath(folder.path, name)));
    };
    const auto visit = [&](std::string_view name, unsigned char type) {
        if (const auto rowID = rowIDOfName(name, messageSuffix)) {
            if (isFile(name, type)) rowIDs.push_back(*rowID);
        } else if (const auto partial = rowIDOfName(name, partialSuffix)) {
            if (isFile(name, type)) folder.partialRowIDs.push_back(*partial);
        } else {
            visitOther(name, type);
        }
    };
    const bool isComplete = platform::visitDirectory(folder.path, visit);
    std::ranges::sort(folder.partialRowIDs);
    const bool isAbsent = platform::lookAtFile(folder.path).presence == platform::FileLook::Presence::absent;
    if (!isComplete && !isAbsent) return;
    std::ranges::sort(rowIDs);
    folder.rowIDs = std::move(rowIDs);
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

bool StoreListing::MessageFolder::hasPartialFile(std::int64_t rowID) const {
    return std::ranges::binary_search(partialRowIDs, rowID);
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
    listMessages(folder, [&](std::string_view name, unsigned char type) {
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
    MessageFolder listed{.path = path, .rowIDs = {}, .partialRowIDs = {}, .attachmentRoots = {}};
    listMessages(listed, [](std::string_view, unsigned char) {});
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
