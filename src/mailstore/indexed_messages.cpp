#include "mailstore/indexed_messages.h"

#include <thread>

#include <fmt/format.h>

#include "mailstore/attachment_names.h"
#include "mailstore/index_sql.h"
#include "mailstore/mail_index_query_error.h"
#include "mailstore/message_file_index.h"
#include "mailstore/message_identifiers.h"
#include "mailstore/preview_placeholders.h"
#include "mailstore/reader_logs.h"
#include "mailstore/sqlite_shell.h"
#include "mailstore/store_location.h"
#include "mailstore/text_parts.h"
#include "platform/directory.h"
#include "text/case.h"

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

class CandidateRows {
  public:
    // Nothing for a row that can't be used.
    std::optional<IndexedMessageCandidate> candidate(JsonRow& row) {
        const auto rowID = row.integer("rowid");
        if (!rowID) return std::nullopt;
        IndexedMessageCandidate candidate;
        candidate.rowID = *rowID;
        candidate.mailboxURL = repeated(row, "url");
        candidate.subject = row.text("subject").value_or("");
        candidate.senderName = repeated(row, "senderName");
        candidate.senderAddress = repeated(row, "senderAddress");
        candidate.recipients = repeated(row, "recipients");
        candidate.timestamp = row.integer("msgDate").value_or(0);
        candidate.size = row.integer("msgSize").value_or(0);
        candidate.messageIDHeader = row.text("messageId").value_or("");
        candidate.attachmentNames = attachmentNames(row.text("attachments").value_or(""));
        return candidate;
    }

  private:
    SharedText repeated(JsonRow& row, std::string_view column) {
        return texts_(row.text(column).value_or(""));
    }

    static std::vector<SharedText> attachmentNames(std::string_view joined) {
        std::vector<SharedText> names;
        if (joined.empty()) return names;
        for (const std::string_view part : splitNonEmpty(joined, '\x1F')) {
            for (const std::string& name : splitCaretJoinedName(part)) names.emplace_back(name);
        }
        return names;
    }

    TextInterner texts_;
};

// Lists the folders of the wanted accounts while the shell is at work. Ended before anything is asked of the
// index.
class Prefetch {
  public:
    Prefetch(MessageFileIndex& index, const std::vector<std::string>& accountURLPrefixes)
      : thread_([&index, prefixes = accountURLPrefixes](const std::stop_token& stop) {
          index.prefetch(stop, [&](std::string_view account) { return isWanted(account, prefixes); });
      }) {}

    void finish() {
        if (!thread_.joinable()) return;
        thread_.request_stop();
        thread_.join();
    }

  private:
    static bool isWanted(std::string_view account, const std::vector<std::string>& prefixes) {
        return prefixes.empty() || std::ranges::any_of(prefixes, [&](const std::string& prefix) {
                   return text::containsIgnoringCase(prefix, account);
               });
    }

    std::jthread thread_;
};

} // namespace

void visitIndexedCandidates(const MailStoreContext& context, const std::string& rootPath,
                            const CandidateFilter& filter, const std::stop_token& stop,
                            const std::function<void(IndexedMessageCandidate&&)>& visit) {
    if (!canQueryEnvelopeIndex(context, rootPath)) throw MailIndexQueryError(ErrorKind::unavailable);
    const std::string index = envelopeIndexPath(rootPath);
    const platform::TemporaryFile output = requireOutput(
        context, runShell(context,
                          {.databasePath = index,
                           .sql = candidateQuery(filter, messageIdHeaderColumnExists(context, index, stop)),
                           .format = ShellQuery::Format::json,
                           .outputPrefix = "corvane-envelope-",
                           .outputExtension = ".tsv",
                           .timeLimit = context.queryTimeLimit},
                          stop));
    CandidateRows rows;
    const bool isWhole = readJsonRows(output.path(), [&](JsonRow& row) {
        if (stop.stop_requested()) throw ScanStopped();
        auto candidate = rows.candidate(row);
        if (!candidate || (filter.requireIndexedAttachments && candidate->attachmentNames.empty())) return;
        visit(std::move(*candidate));
    });
    if (!isWhole) throw MailIndexQueryError(ErrorKind::unreadableOutput);
}

std::vector<IndexedMessageCandidate> indexedMessageCandidates(const MailStoreContext& context,
                                                              const std::string& rootPath,
                                                              const CandidateFilter& filter,
                                                              const std::stop_token& stop) {
    std::vector<IndexedMessageCandidate> candidates;
    visitIndexedCandidates(context, rootPath, filter, stop, [&](IndexedMessageCandidate&& candidate) {
        candidates.push_back(std::move(candidate));
    });
    return candidates;
}

std::optional<IndexedMessageFiles> indexedMessages(const MailStoreContext& context,
                                                   const std::string& rootPath,
                                                   std::optional<std::int64_t> maximumYear,
                                                   const std::vector<std::string>& accountURLPrefixes,
                                                   ScanTimingMetrics* timing, const std::stop_token& stop) {
    double unwatched = 0;
    const SecondsCounter elapsed(timing != nullptr ? timing->envelopeIndexSeconds : unwatched);
    IndexedMessageFiles found;
    MessageFileIndex fileIndex(rootPath);
    Prefetch prefetch(fileIndex, accountURLPrefixes);
    std::int64_t visited = 0;
    try {
        const CandidateFilter filter{.maximumYear = maximumYear, .accountURLPrefixes = accountURLPrefixes};
        visitIndexedCandidates(context, rootPath, filter, stop, [&](IndexedMessageCandidate&& candidate) {
            prefetch.finish();
            ++visited;
            const auto path = fileIndex.existingFilePath(candidate.mailboxURL, candidate.rowID);
            if (!path) return;
            found.files.emplace_back(SharedText(*path));
            found.candidates.push_back(std::move(candidate));
        });
    } catch (const MailIndexQueryError& error) {
        if (error.kind() == ErrorKind::unavailable) return std::nullopt;
        throw;
    }
    if (timing != nullptr) timing->envelopeIndexedMessages = visited;
    return found;
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
                                      const MailboxLabels& labels) {
    static const SharedText noSubject("无主题");
    static const SharedText noSender("发件人未知");
    static const SharedText preview(lazyPreviewPlaceholder);
    MailMessageRecord record;
    record.id = fileURL.path();
    record.subject = candidate.subject.empty() ? noSubject : candidate.subject;
    record.sender = formattedAddress(candidate.senderName, candidate.senderAddress);
    if (record.sender.empty()) record.sender = noSender;
    record.recipients = candidate.recipients;
    if (candidate.timestamp >= 1) record.date = Date(std::chrono::seconds(candidate.timestamp));
    record.mailbox = labels.mailbox;
    record.accountIdentifier = labels.accountIdentifier;
    record.accountName = labels.accountName;
    record.fileURL = fileURL;
    if (auto identifier = normalizedMessageIdentifier(candidate.messageIDHeader))
        record.messageIdentifier = SharedText(*identifier);
    record.messageSize =
        candidate.size >= 1 ? candidate.size : platform::fileSize(fileURL.path().str()).value_or(0);
    record.attachments = std::move(attachments);
    record.preview = preview;
    return record;
}

} // namespace corvane::mailstore
