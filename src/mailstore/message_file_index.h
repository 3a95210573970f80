// The files of messages (<row>.emlx) by the mailbox urls of the index, over a listing of the store's folders.
// Keeps the folders of each mailbox at hand: one for each thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "mailstore/store_listing.h"
#include "text/shared_text.h"

namespace corvane {

class MessageFileIndex {
  public:
    struct Bucket {
        const StoreListing::MessageFolder* folder = nullptr;
        const mailstore::AttachmentRoots* attachmentRoots = nullptr; // null until asked for
    };

    struct Mailbox {
        std::optional<std::string> dataRoot;
        std::unordered_map<std::int64_t, Bucket> buckets; // by the row's thousands
    };

    // Over a listing of its own, or a shared one.
    explicit MessageFileIndex(const std::string& rootPath);
    explicit MessageFileIndex(std::shared_ptr<StoreListing> listing);

    // The folder of a mailbox is looked up once. Stays where it is.
    Mailbox& mailbox(std::string_view url);

    // The folder that the row's file lies in; null when there is no such file.
    Bucket* bucketOfExisting(Mailbox& mailbox, std::int64_t rowID);

    // Where attachments of the messages in a folder may lie.
    const mailstore::AttachmentRoots& attachmentRoots(Bucket& bucket);

    // Where a row's file lies; nothing when its mailbox has no folder.
    [[nodiscard]] std::optional<std::string> filePath(std::string_view mailboxURL, std::int64_t rowID);

    // The same, only when that file exists.
    [[nodiscard]] std::optional<std::string> existingFilePath(std::string_view mailboxURL,
                                                              std::int64_t rowID);

  private:
    static Bucket& bucket(Mailbox& mailbox, std::int64_t rowID);

    std::shared_ptr<StoreListing> listing_;
    std::unordered_map<std::string, Mailbox, TextHash, TextEqual> mailboxes_; // by url
};

} // namespace corvane
