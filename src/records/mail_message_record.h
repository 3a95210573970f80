// One message of the Mail store as a scan sees it, and its attachments. Plain values: a change is made by
// building a changed copy, which shares all texts with the original.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/file_url.h"
#include "records/values.h"
#include "text/shared_text.h"

namespace corvane {

struct MailAttachmentRecord {
    Uuid id;
    SharedText fileName;
    SharedText mimeType;
    std::optional<std::int64_t> estimatedSize; // bytes, absent when unknown
    std::optional<FileURL> sourceFileURL;

    // The size for the screens, or a text that says it isn't known yet.
    [[nodiscard]] std::string displaySize() const;

    friend bool operator==(const MailAttachmentRecord&, const MailAttachmentRecord&) = default;
};

struct MailMessageRecord {
    SharedText id; // path of one .emlx, never the Message-ID
    SharedText subject;
    SharedText sender;
    SharedText recipients;
    std::optional<Date> date;
    SharedText mailbox;
    std::optional<SharedText> accountIdentifier;
    std::optional<SharedText> accountName;
    std::optional<bool> isImportedMailbox;
    FileURL fileURL;
    std::optional<std::vector<FileURL>> relatedMessageFileURLs;
    std::optional<SharedText> messageIdentifier;
    std::optional<std::vector<SharedText>> referencedMessageIdentifiers;
    std::int64_t messageSize = 0; // bytes
    std::vector<MailAttachmentRecord> attachments;
    SharedText preview;

    // `fileURL`, then the related ones in their order, each path once.
    [[nodiscard]] std::vector<FileURL> allMessageFileURLs() const;

    // Whether one of the files exists. Touches the disk on every call: background work only.
    [[nodiscard]] bool isLocallyAvailable() const;

    [[nodiscard]] std::size_t attachmentCount() const { return attachments.size(); }

    [[nodiscard]] bool importedMailbox() const { return isImportedMailbox.value_or(false); }

    [[nodiscard]] std::size_t duplicateMessageFileCount() const;

    [[nodiscard]] bool hasDuplicateMessageFiles() const { return duplicateMessageFileCount() >= 2; }

    [[nodiscard]] bool hasMailVisibilityHints() const {
        return importedMailbox() || hasDuplicateMessageFiles();
    }

    [[nodiscard]] std::string formattedDate() const;
    [[nodiscard]] std::string ageText() const;
    [[nodiscard]] MailMessageRecord replacingPreview(SharedText replacement) const;
    [[nodiscard]] MailMessageRecord
    replacingRelatedMessageFileURLs(std::optional<std::vector<FileURL>> replacement) const;

    friend bool operator==(const MailMessageRecord&, const MailMessageRecord&) = default;
};

using MessageList = std::vector<MailMessageRecord>;
using SharedMessageList = std::shared_ptr<const MessageList>;

} // namespace corvane
