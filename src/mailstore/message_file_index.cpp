#include "mailstore/message_file_index.h"

#include <algorithm>

#include <dirent.h>
#include <fmt/format.h>

#include "mailstore/mailbox_url.h"
#include "mailstore/store_location.h"
#include "platform/directory.h"
#include "platform/paths.h"
#include "text/encoding.h"

namespace corvane {

namespace {

constexpr std::string_view messageSuffix = ".emlx";
constexpr int deepestFolder = 40;

// Only the exact spelling: no sign, no leading zero.
std::optional<std::int64_t> rowIDOfName(std::string_view name) {
    if (!name.ends_with(messageSuffix) || name.front() < '1' || name.front() > '9') return std::nullopt;
    return text::parseInteger(name.substr(0, name.size() - messageSuffix.size()));
}

std::string messagePath(std::string_view folder, std::int64_t rowID) {
    return fmt::format("{}/{}{}", folder, rowID, messageSuffix);
}

struct Walk {
    std::string folder;
    int depth = 0;
};

// Neither hidden folders nor those of attachments hold messages.
void pushSubfolders(std::vector<Walk>& pending, const Walk& parent) {
    platform::visitDirectory(parent.folder, [&](std::string_view name, unsigned char type) {
        if (type == DT_DIR && !name.starts_with('.') && name != "Attachments")
            pending.push_back({.folder = platform::joinPath(parent.folder, name), .depth = parent.depth + 1});
    });
}

} // namespace

MessageFileIndex::MessageFileIndex(const std::string& rootPath)
  : versionDirectory_(mailstore::latestMailVersionDirectory(rootPath)) {}

std::optional<std::string> MessageFileIndex::filePath(std::string_view mailboxURL, std::int64_t rowID) {
    Mailbox& found = mailbox(mailboxURL);
    if (!found.dataRoot) return std::nullopt;
    return messagePath(bucket(found, rowID).folder, rowID);
}

std::optional<std::string> MessageFileIndex::existingFilePath(std::string_view mailboxURL,
                                                              std::int64_t rowID) {
    Mailbox& found = mailbox(mailboxURL);
    if (!found.dataRoot) return std::nullopt;
    Bucket& in = bucket(found, rowID);
    if (in.content == nullptr) {
        auto listed = folders_.find(in.folder);
        if (listed == folders_.end()) listed = folders_.emplace(in.folder, listMessages(in.folder)).first;
        in.content = &listed->second;
    }
    std::string path = messagePath(in.folder, rowID);
    const bool exists = *in.content && rowID > 0 ? std::ranges::binary_search(**in.content, rowID)
                                                 : platform::isRegularFile(path);
    return exists ? std::optional(std::move(path)) : std::nullopt;
}

void MessageFileIndex::prefetch(const std::stop_token& stop,
                                const std::function<bool(std::string_view account)>& isWanted) {
    std::vector<Walk> pending;
    pushSubfolders(pending, {.folder = versionDirectory_});
    std::erase_if(
        pending, [&](const Walk& account) { return !isWanted(platform::lastPathComponent(account.folder)); });
    while (!pending.empty() && !stop.stop_requested()) {
        const Walk next = std::move(pending.back());
        pending.pop_back();
        if (platform::lastPathComponent(next.folder) == "Messages")
            folders_.try_emplace(next.folder, listMessages(next.folder));
        else if (next.depth < deepestFolder)
            pushSubfolders(pending, next);
    }
}

MessageFileIndex::Mailbox& MessageFileIndex::mailbox(std::string_view url) {
    if (const auto known = mailboxes_.find(url); known != mailboxes_.end()) return known->second;
    Mailbox found{.dataRoot = mailstore::mailboxDataRootBelow(versionDirectory_, url), .buckets = {}};
    return mailboxes_.emplace(url, std::move(found)).first->second;
}

MessageFileIndex::Bucket& MessageFileIndex::bucket(Mailbox& mailbox, std::int64_t rowID) {
    Bucket& found = mailbox.buckets[std::max<std::int64_t>(rowID, 0) / 1000];
    if (found.folder.empty()) found.folder = mailstore::messagesFolder(*mailbox.dataRoot, rowID);
    return found;
}

MessageFileIndex::FolderContent MessageFileIndex::listMessages(const std::string& folder) {
    std::vector<std::int64_t> rowIDs;
    const bool isComplete = platform::visitDirectory(folder, [&](std::string_view name, unsigned char type) {
        const auto rowID = rowIDOfName(name);
        if (!rowID) return;
        const bool mayBeLink = type == DT_LNK || type == DT_UNKNOWN;
        if (type == DT_REG || (mayBeLink && platform::isRegularFile(platform::joinPath(folder, name))))
            rowIDs.push_back(*rowID);
    });
    if (!isComplete && platform::isDirectory(folder)) return std::nullopt;
    std::ranges::sort(rowIDs);
    return rowIDs;
}

} // namespace corvane
