// The files of messages (<row>.emlx) by the mailbox urls of the index, over a listing of the store's folders.
// Keeps the folders of each mailbox at hand: one for each thread.
#pragma once

#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mailstore/folders/store_listing.h"
#include "text/shared_text.h"

namespace corvane {

class MessageFileIndex {
  public:
    static constexpr std::int64_t rowsOfBucket = 1000;

    // The rows of one "Messages" folder. A scan asks for rows of all mailboxes and so jumps between folders:
    // what it asks of one folder is kept close together in memory.
    struct Bucket {
        const StoreListing::MessageFolder* folder = nullptr;
        const mailstore::AttachmentRoots* attachmentRoots = nullptr; // null until asked for
        std::bitset<rowsOfBucket> hasFile;        // of positive rows in a folder that could be listed
        std::bitset<rowsOfBucket> hasAttachments; // of positive rows, valid with the roots
    };

    // Buckets by the row's thousands.
    class BucketTable {
      public:
        Bucket& operator[](std::int64_t thousands);

      private:
        static constexpr std::int64_t denseThousands = 4096;

        std::vector<std::unique_ptr<Bucket>> dense_;
        std::unordered_map<std::int64_t, Bucket> sparse_;
    };

    struct Mailbox {
        std::optional<std::string> dataRoot;
        bool isOutOfSight = false; // as MailboxPlace has it
        BucketTable buckets;
    };

    // Over a listing of its own, made at need, or one that several threads share.
    explicit MessageFileIndex(const std::string& rootPath);
    explicit MessageFileIndex(std::shared_ptr<StoreListing> listing);

    // The folder of a mailbox is looked up on the disk at the first call. The reference stays valid.
    Mailbox& mailbox(std::string_view url);

    // The folder that the row's file lies in; null when there is no such file. Valid as long as the mailbox.
    Bucket* bucketOfExisting(Mailbox& mailbox, std::int64_t rowID);

    // The files of a message's attachments, those of the nearest place that has any; empty without one.
    std::vector<StoredAttachment> storedAttachments(Bucket& bucket, std::int64_t rowID);

    // Where a row's file lies; nullopt when its mailbox has no folder. The file need not exist.
    [[nodiscard]] std::optional<std::string> filePath(std::string_view mailboxURL, std::int64_t rowID);

    // The same, nullopt also when that file doesn't exist.
    [[nodiscard]] std::optional<std::string> existingFilePath(std::string_view mailboxURL,
                                                              std::int64_t rowID);

    // Mail holds a part of the message: the file of its first parts lies where the whole one would.
    [[nodiscard]] bool hasPartialFile(std::string_view mailboxURL, std::int64_t rowID);

    // The row has no file that can be seen, in a folder that can't be looked into: it may be there.
    [[nodiscard]] bool isOutOfSight(std::string_view mailboxURL, std::int64_t rowID);

  private:
    Bucket& bucket(Mailbox& mailbox, std::int64_t rowID);

    std::shared_ptr<StoreListing> listing_;
    std::unordered_map<std::string, Mailbox, TextHash, TextEqual> mailboxes_; // by url
};

} // namespace corvane
