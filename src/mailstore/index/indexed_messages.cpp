#include "mailstore/index/indexed_messages.h"

#include <chrono>
#include <cstddef>
#include <utility>

#include "mime/attachment_names.h"
#include "mime/message_identifiers.h"
#include "platform/files/directory.h"
#include "records/texts/missing_fields.h"
#include "records/texts/preview_placeholders.h"
#include "text/split.h"

namespace corvane::mailstore {

namespace {

IndexedDate dateOf(JsonRow& row, std::string_view column) {
    if (const auto number = row.number(column)) return {.whole = number->whole, .fraction = number->fraction};
    const auto text = row.text(column);
    if (!text) return {};
    std::uint64_t beginning = 0;
    for (std::size_t i = 0; i < sizeof beginning; ++i)
        beginning = beginning << 8U | (i < text->size() ? static_cast<unsigned char>((*text)[i]) : 0U);
    return {.isText = true, .whole = static_cast<std::int64_t>(beginning >> 1U)};
}

std::vector<std::string> attachmentNames(std::string_view joined) {
    std::vector<std::string> names;
    if (joined.empty()) return names;
    for (const std::string_view part : text::splitNonEmpty(joined, '\x1F')) {
        for (std::string& name : mime::splitCaretJoinedName(part)) names.push_back(std::move(name));
    }
    return names;
}

} // namespace

std::optional<IndexedMessageCandidate> candidateOf(JsonRow& row) {
    const auto rowID = row.integer("rowid");
    if (!rowID) return std::nullopt;
    IndexedMessageCandidate candidate;
    candidate.rowID = *rowID;
    candidate.mailboxURL = row.text("url").value_or("");
    candidate.subject = row.text("subject").value_or("");
    candidate.senderName = row.text("senderName").value_or("");
    candidate.senderAddress = row.text("senderAddress").value_or("");
    candidate.recipients = row.text("recipients").value_or("");
    candidate.date = dateOf(row, "msgDate");
    candidate.timestamp = candidate.date.isText ? 0 : candidate.date.whole;
    candidate.size = row.integer("msgSize").value_or(0);
    candidate.messageIDHeader = row.text("messageId").value_or("");
    candidate.attachmentNames = attachmentNames(row.text("attachments").value_or(""));
    return candidate;
}

MailboxLabels mailboxLabels(std::string_view mailboxURL, const AccountNames& accountNamesByPrefix) {
    MailboxLabels labels{.mailbox = mailboxName(mailboxURL), .accountIdentifier = {}, .accountName = {}};
    if (const auto account = accountOfMailbox(mailboxURL, accountNamesByPrefix)) {
        labels.accountIdentifier = account->first;
        labels.accountName = account->second;
    }
    return labels;
}

void MailboxLabels::applyTo(MailMessageRecord& record) const {
    record.mailbox = mailbox;
    record.accountIdentifier = accountIdentifier;
    record.accountName = accountName;
}

MailMessageRecord recordFromCandidate(const IndexedMessageCandidate& candidate, const FileURL& fileURL,
                                      std::vector<MailAttachmentRecord> attachments, TextInterner& texts) {
    static const SharedText noSubject(missingSubject);
    static const SharedText noSender(missingSender);
    static const SharedText preview(lazyPreviewPlaceholder);
    MailMessageRecord record;
    record.id = fileURL.path();
    record.subject = candidate.subject.empty() ? noSubject : SharedText(candidate.subject);
    record.sender = texts(mime::formattedAddress(candidate.senderName, candidate.senderAddress));
    if (record.sender.empty()) record.sender = noSender;
    record.recipients = texts(candidate.recipients);
    if (candidate.timestamp >= 1) record.date = Date(std::chrono::seconds(candidate.timestamp));
    record.fileURL = fileURL;
    if (auto identifier = mime::normalizedMessageIdentifier(candidate.messageIDHeader))
        record.messageIdentifier = SharedText(*identifier);
    record.messageSize =
        candidate.size >= 1 ? candidate.size : platform::fileSize(fileURL.path().str()).value_or(0);
    record.attachments = std::move(attachments);
    record.preview = preview;
    return record;
}

} // namespace corvane::mailstore
