#include "mailstore/message_file_index.h"

#include <algorithm>

#include "mailstore/mailbox_url.h"

namespace corvane {

MessageFileIndex::MessageFileIndex(const std::string& rootPath)
  : MessageFileIndex(std::make_shared<StoreListing>(rootPath)) {}

MessageFileIndex::MessageFileIndex(std::shared_ptr<StoreListing> listing)
  : listing_(std::move(listing)) {}

MessageFileIndex::Mailbox& MessageFileIndex::mailbox(std::string_view url) {
    if (const auto known = mailboxes_.find(url); known != mailboxes_.end()) return known->second;
    Mailbox found{.dataRoot = mailstore::mailboxDataRootBelow(listing_->versionDirectory(), url),
                  .buckets = {}};
    return mailboxes_.emplace(url, std::move(found)).first->second;
}

MessageFileIndex::Bucket& MessageFileIndex::bucket(Mailbox& mailbox, std::int64_t rowID) {
    return mailbox.buckets[std::max<std::int64_t>(rowID, 0) / 1000];
}

MessageFileIndex::Bucket* MessageFileIndex::bucketOfExisting(Mailbox& mailbox, std::int64_t rowID) {
    if (!mailbox.dataRoot) return nullptr;
    Bucket& found = bucket(mailbox, rowID);
    if (found.folder == nullptr)
        found.folder = &listing_->messageFolder(mailstore::messagesFolder(*mailbox.dataRoot, rowID));
    return found.folder->hasFile(rowID) ? &found : nullptr;
}

const mailstore::AttachmentRoots& MessageFileIndex::attachmentRoots(Bucket& bucket) {
    if (bucket.attachmentRoots == nullptr)
        bucket.attachmentRoots = &listing_->attachmentRoots(*bucket.folder);
    return *bucket.attachmentRoots;
}

std::optional<std::string> MessageFileIndex::filePath(std::string_view mailboxURL, std::int64_t rowID) {
    const Mailbox& found = mailbox(mailboxURL);
    if (!found.dataRoot) return std::nullopt;
    const StoreListing::MessageFolder folder{
        .path = mailstore::messagesFolder(*found.dataRoot, rowID), .rowIDs = {}, .attachmentRoots = {}};
    return folder.filePath(rowID);
}

std::optional<std::string> MessageFileIndex::existingFilePath(std::string_view mailboxURL,
                                                              std::int64_t rowID) {
    const Bucket* found = bucketOfExisting(mailbox(mailboxURL), rowID);
    return found != nullptr ? std::optional(found->folder->filePath(rowID)) : std::nullopt;
}

} // namespace corvane
