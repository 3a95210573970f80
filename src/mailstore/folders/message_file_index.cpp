#include "mailstore/folders/message_file_index.h"

#include <algorithm>
#include <utility>

#include "mailstore/folders/mailbox_url.h"
#include "platform/files/file_look.h"

namespace corvane {

namespace {

std::size_t bitOf(std::int64_t positiveRow) {
    return static_cast<std::size_t>(positiveRow % MessageFileIndex::rowsOfBucket);
}

} // namespace

MessageFileIndex::MessageFileIndex(const std::string& rootPath)
  : MessageFileIndex(std::make_shared<StoreListing>(rootPath)) {}

MessageFileIndex::MessageFileIndex(std::shared_ptr<StoreListing> listing)
  : listing_(std::move(listing)) {}

MessageFileIndex::Mailbox& MessageFileIndex::mailbox(std::string_view url) {
    if (const auto known = mailboxes_.find(url); known != mailboxes_.end()) return known->second;
    auto place = mailstore::mailboxPlaceBelow(listing_->versionDirectory(), url);
    Mailbox found{.dataRoot = std::move(place.dataRoot), .isOutOfSight = place.isOutOfSight, .buckets = {}};
    return mailboxes_.emplace(url, std::move(found)).first->second;
}

MessageFileIndex::Bucket& MessageFileIndex::BucketTable::operator[](std::int64_t thousands) {
    if (thousands >= denseThousands) return sparse_[thousands];
    const auto place = static_cast<std::size_t>(thousands);
    if (place >= dense_.size()) dense_.resize(place + 1);
    if (!dense_[place]) dense_[place] = std::make_unique<Bucket>();
    return *dense_[place];
}

MessageFileIndex::Bucket& MessageFileIndex::bucket(Mailbox& mailbox, std::int64_t rowID) {
    const std::int64_t thousands = std::max<std::int64_t>(rowID, 0) / rowsOfBucket;
    Bucket& found = mailbox.buckets[thousands];
    if (found.folder != nullptr) return found;
    found.folder = &listing_->messageFolder(mailstore::messagesFolder(*mailbox.dataRoot, rowID));
    if (!found.folder->rowIDs) return found;
    for (const std::int64_t row : *found.folder->rowIDs) {
        if (row / rowsOfBucket == thousands) found.hasFile.set(bitOf(row));
    }
    return found;
}

MessageFileIndex::Bucket* MessageFileIndex::bucketOfExisting(Mailbox& mailbox, std::int64_t rowID) {
    if (!mailbox.dataRoot) return nullptr;
    Bucket& found = bucket(mailbox, rowID);
    const bool isKnown = rowID > 0 && found.folder->rowIDs;
    const bool exists = isKnown ? found.hasFile.test(bitOf(rowID)) : found.folder->hasFile(rowID);
    return exists ? &found : nullptr;
}

std::vector<StoredAttachment> MessageFileIndex::storedAttachments(Bucket& bucket, std::int64_t rowID) {
    if (bucket.attachmentRoots == nullptr) {
        bucket.attachmentRoots = &listing_->attachmentRoots(*bucket.folder);
        const std::int64_t first = std::max<std::int64_t>(rowID, 0) / rowsOfBucket * rowsOfBucket;
        for (const AttachmentRoot* root : *bucket.attachmentRoots) {
            for (const std::int64_t row : root->rowsBetween(first, first + rowsOfBucket))
                bucket.hasAttachments.set(bitOf(row));
        }
    }
    if (rowID > 0 && !bucket.hasAttachments.test(bitOf(rowID))) return {};
    return mailstore::attachmentFiles(*bucket.attachmentRoots, std::to_string(rowID));
}

std::optional<std::string> MessageFileIndex::filePath(std::string_view mailboxURL, std::int64_t rowID) {
    const Mailbox& found = mailbox(mailboxURL);
    if (!found.dataRoot) return std::nullopt;
    const StoreListing::MessageFolder folder{.path = mailstore::messagesFolder(*found.dataRoot, rowID),
                                             .rowIDs = {},
                                             .partialRowIDs = {},
                                             .attachmentRoots = {}};
    return folder.filePath(rowID);
}

std::optional<std::string> MessageFileIndex::existingFilePath(std::string_view mailboxURL,
                                                              std::int64_t rowID) {
    const Bucket* found = bucketOfExisting(mailbox(mailboxURL), rowID);
    return found != nullptr ? std::optional(found->folder->filePath(rowID)) : std::nullopt;
}

bool MessageFileIndex::hasPartialFile(std::string_view mailboxURL, std::int64_t rowID) {
    Mailbox& found = mailbox(mailboxURL);
    return found.dataRoot && bucket(found, rowID).folder->hasPartialFile(rowID);
}

bool MessageFileIndex::isOutOfSight(std::string_view mailboxURL, std::int64_t rowID) {
    Mailbox& found = mailbox(mailboxURL);
    if (!found.dataRoot) return found.isOutOfSight;
    const StoreListing::MessageFolder& folder = *bucket(found, rowID).folder;
    return !folder.rowIDs &&
           platform::lookAtFile(folder.filePath(rowID)).presence == platform::FileLook::Presence::unknown;
}

} // namespace corvane
