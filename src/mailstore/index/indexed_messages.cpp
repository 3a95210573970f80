#include "mailstore/index/indexed_messages.h"

#include <chrono>

#include <fmt/format.h>

#include "mailstore/folders/store_location.h"
#include "mailstore/index/index_sql.h"
#include "mailstore/index/mail_index_query_error.h"
#include "mailstore/reader_logs.h"
#include "mime/attachment_names.h"
#include "mime/message_identifiers.h"
#include "platform/files/directory.h"
#include "records/preview_placeholders.h"
#include "text/split.h"

namespace corvane::mailstore {

namespace {

using ErrorKind = MailIndexQueryError::Kind;

// The answer of the shell, or the error that its failure is for the user.
platform::TemporaryFile requireOutput(const MailStoreContext& context, ShellResult result) {
    switch (result.kind) {
    case ShellResult::Kind::succeeded:
        return std::move(*result.output);
    case ShellResult::Kind::noOutputFile:
        throw MailIndexQueryError(ErrorKind::unreadableOutput);
    case ShellResult::Kind::launchFailed:
        throw MailIndexQueryError(ErrorKind::launchFailed, result.detail);
    case ShellResult::Kind::stopped:
        throw ScanStopped();
    case ShellResult::Kind::failed:
        throw MailIndexQueryError(ErrorKind::queryFailed, result.detail);
    case ShellResult::Kind::timedOut:
        break;
    }
    const double limit = std::chrono::duration<double>(context.queryTimeLimit).count();
    debugLog(
        context.support,
        fmt::format("indexedMessageCandidates timed out after {:.1f}s; likely Mail Envelope Index is locked",
                    limit));
    throw MailIndexQueryError(ErrorKind::timedOut);
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

platform::TemporaryFile runCandidateQuery(const MailStoreContext& context, const std::string& rootPath,
                                          const CandidateFilter& filter, const std::stop_token& stop,
                                          const OutputReader& readAhead) {
    if (!canQueryEnvelopeIndex(context, rootPath)) throw MailIndexQueryError(ErrorKind::unavailable);
    const std::string index = envelopeIndexPath(rootPath);
    return requireOutput(
        context, runShell(context,
                          {.databasePath = index,
                           .sql = candidateQuery(filter, messageIdHeaderColumnExists(context, index, stop)),
                           .format = ShellQuery::Format::json,
                           .outputPrefix = "corvane-envelope-",
                           .outputExtension = ".tsv",
                           .timeLimit = context.queryTimeLimit},
                          stop, readAhead));
}

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
    candidate.timestamp = row.integer("msgDate").value_or(0);
    candidate.size = row.integer("msgSize").value_or(0);
    candidate.messageIDHeader = row.text("messageId").value_or("");
    candidate.attachmentNames = attachmentNames(row.text("attachments").value_or(""));
    return candidate;
}

void visitIndexedCandidates(const MailStoreContext& context, const std::string& rootPath,
                            const CandidateFilter& filter, const std::stop_token& stop,
                            const std::function<void(const IndexedMessageCandidate&)>& visit) {
    const platform::TemporaryFile output = runCandidateQuery(context, rootPath, filter, stop);
    const bool isWhole = readJsonRows(output.path(), [&](JsonRow& row) {
        if (stop.stop_requested()) throw ScanStopped();
        const auto candidate = candidateOf(row);
        if (!candidate || (filter.requireIndexedAttachments && candidate->attachmentNames.empty())) return;
        visit(*candidate);
    });
    if (!isWhole) throw MailIndexQueryError(ErrorKind::unreadableOutput);
}

MailboxLabels mailboxLabels(std::string_view mailboxURL, const AccountNames& accountNamesByPrefix) {
    MailboxLabels labels{.mailbox = mailboxName(mailboxURL), .accountIdentifier = {}, .accountName = {}};
    if (const auto account = accountOfMailbox(mailboxURL, accountNamesByPrefix)) {
        labels.accountIdentifier = account->first;
        labels.accountName = account->second;
    }
    return labels;
}

MailMessageRecord recordFromCandidate(const IndexedMessageCandidate& candidate, const FileURL& fileURL,
                                      std::vector<MailAttachmentRecord> attachments,
                                      const MailboxLabels& labels, TextInterner& texts) {
    static const SharedText noSubject("无主题");
    static const SharedText noSender("发件人未知");
    static const SharedText preview(lazyPreviewPlaceholder);
    MailMessageRecord record;
    record.id = fileURL.path();
    record.subject = candidate.subject.empty() ? noSubject : SharedText(candidate.subject);
    record.sender = texts(mime::formattedAddress(candidate.senderName, candidate.senderAddress));
    if (record.sender.empty()) record.sender = noSender;
    record.recipients = texts(candidate.recipients);
    if (candidate.timestamp >= 1) record.date = Date(std::chrono::seconds(candidate.timestamp));
    record.mailbox = labels.mailbox;
    record.accountIdentifier = labels.accountIdentifier;
    record.accountName = labels.accountName;
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
