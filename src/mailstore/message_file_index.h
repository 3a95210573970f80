// Which message files (<row>.emlx) exist, by one listing of each "Messages" folder instead of one look a
// message. A folder is listed at its first need, or ahead by `prefetch`, and its content then stands for the
// life of the index. One thread at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "text/shared_text.h"

namespace corvane {

class MessageFileIndex {
  public:
    explicit MessageFileIndex(const std::string& rootPath);

    // Where a row's file lies; nothing when its mailbox has no folder. The folder of a mailbox is looked up
    // once.
    [[nodiscard]] std::optional<std::string> filePath(std::string_view mailboxURL, std::int64_t rowID);

    // The same, only when that file exists.
    [[nodiscard]] std::optional<std::string> existingFilePath(std::string_view mailboxURL,
                                                              std::int64_t rowID);

    // Lists the "Messages" folders below the account folders that `isWanted` takes, until it is told to stop.
    // Only saves time: what it leaves out is listed at need.
    void prefetch(const std::stop_token& stop, const std::function<bool(std::string_view account)>& isWanted);

  private:
    // Row ids, ascending. Nothing for a folder that can't be listed: its files are then looked at one by one.
    using FolderContent = std::optional<std::vector<std::int64_t>>;

    struct Bucket {
        std::string folder;
        const FolderContent* content = nullptr;
    };

    struct Mailbox {
        std::optional<std::string> dataRoot;
        std::unordered_map<std::int64_t, Bucket> buckets; // by the row's thousands
    };

    Mailbox& mailbox(std::string_view url);
    Bucket& bucket(Mailbox& mailbox, std::int64_t rowID);
    static FolderContent listMessages(const std::string& folder);

    std::string versionDirectory_;
    std::unordered_map<std::string, Mailbox, TextHash, TextEqual> mailboxes_; // by url
    std::unordered_map<std::string, FolderContent> folders_;
};

} // namespace corvane
