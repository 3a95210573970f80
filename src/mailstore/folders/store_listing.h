// What lies in the store's folders: the rows that have a message file in each "Messages" folder, and the
// "Attachments" folders, by one listing of each folder instead of one look a message. A folder is listed at
// its first need, or ahead by `prefetch`, and its content then stands for the life of the listing.
//
// The prefetch runs on one thread and has ended before anything is asked; the questions may then come from
// several, which list their folders side by side.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mailstore/folders/attachment_root.h"
#include "text/mutex.h"
#include "text/shared_text.h"

namespace corvane {

class StoreListing {
  public:
    struct MessageFolder {
        std::string path;
        // Row ids, ascending. Absent for a folder that can't be listed: its files are then looked at one by
        // one.
        std::optional<std::vector<std::int64_t>> rowIDs;
        // Those of which Mail holds a part (`<row>.partial.emlx`), ascending.
        std::vector<std::int64_t> partialRowIDs;
        // Those that hold folders of messages. Absent until asked for, unless the prefetch has been here.
        std::optional<mailstore::AttachmentRoots> attachmentRoots;

        [[nodiscard]] std::string filePath(std::int64_t rowID) const;
        [[nodiscard]] bool hasFile(std::int64_t rowID) const;
        [[nodiscard]] bool hasPartialFile(std::int64_t rowID) const;
    };

    explicit StoreListing(const std::string& rootPath);

    [[nodiscard]] const std::string& versionDirectory() const { return versionDirectory_; }

    // Lists the "Messages" folders below the account folders that `isWanted` is true for, and the attachments
    // beside them, until a stop is requested. Only saves time: what it leaves out is listed at need. Other
    // callers wait until it returns.
    void prefetch(const std::stop_token& stop, const std::function<bool(std::string_view account)>& isWanted);

    // Seconds that the prefetch spent on attachments.
    [[nodiscard]] double attachmentSeconds() const { return attachmentSeconds_; }

    // By the path of the folder, which need not exist: it then has no rows.
    const MessageFolder& messageFolder(const std::string& path);

    // The roots of a folder that holds a message; they count as used from here on.
    const mailstore::AttachmentRoots& attachmentRoots(const MessageFolder& folder);

    // Folders of messages in all used roots.
    [[nodiscard]] std::size_t attachmentFolderCount() const;

  private:
    struct Walk;

    void walk(Walk next, std::vector<Walk>& pending) REQUIRES(mutex_);
    void addMessageFolder(const Walk& walk) REQUIRES(mutex_);
    const AttachmentRoot* attachmentRoot(const std::string& path) REQUIRES(mutex_);
    const AttachmentRoot* attachmentRootAtNeed(const std::string& path);

    std::string versionDirectory_;
    mutable text::Mutex mutex_;
    // The values stay where they are.
    std::unordered_map<std::string, MessageFolder> messageFolders_ GUARDED_BY(mutex_);
    std::unordered_map<std::string, std::unique_ptr<AttachmentRoot>> attachmentRoots_ GUARDED_BY(mutex_);
    double attachmentSeconds_ = 0;
};

} // namespace corvane
