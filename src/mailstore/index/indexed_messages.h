// The messages that the index knows: what a scan lists without opening a message. Background
// work; any thread.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/index/candidate_query.h"
#include "mailstore/index/json_rows.h"
#include "mailstore/index/sqlite_shell.h"
#include "mailstore/mail_store_context.h"
#include "platform/files/temporary_file.h"
#include "records/file_url.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

// One row of the index, while it is visited.
struct IndexedMessageCandidate {
    std::int64_t rowID = 0;      // also the base name of the message file
    std::string_view mailboxURL; // percent-encoded
    std::vector<std::string> attachmentNames;
    std::string_view subject; // with its prefix
    std::string_view senderName;
    std::string_view senderAddress;
    std::string_view recipients;
    std::int64_t timestamp = 0;       // seconds since 1970
    std::int64_t size = 0;            // bytes
    std::string_view messageIDHeader; // empty when the store lacks the column
};

// Thrown by work that a requested stop has ended, to whoever requested it.
class ScanStopped : public std::exception {};

namespace mailstore {

// Runs the query and returns the file with its rows. The reader reads them while they come. Throws
// MailIndexQueryError, with `timedOut` after the context's limit, and ScanStopped.
platform::TemporaryFile runCandidateQuery(const MailStoreContext& context, const std::string& rootPath,
                                          const CandidateFilter& filter, const std::stop_token& stop,
                                          const OutputReader& readAhead = {});

// Nullopt for a row without a ROWID. The texts are views into the row.
std::optional<IndexedMessageCandidate> candidateOf(JsonRow& row);

// Visits the candidates in the order of the query. Throws as above, behind the first candidates too when the
// output is damaged.
void visitIndexedCandidates(const MailStoreContext& context, const std::string& rootPath,
                            const CandidateFilter& filter, const std::stop_token& stop,
                            const std::function<void(const IndexedMessageCandidate&)>& visit);

// The fields of a record that its mailbox decides.
struct MailboxLabels {
    SharedText mailbox;
    std::optional<SharedText> accountIdentifier;
    std::optional<SharedText> accountName;
};

MailboxLabels mailboxLabels(std::string_view mailboxURL, const AccountNames& accountNamesByPrefix);

// The record of a candidate, without reading the message. Senders and recipients recur in many records;
// `texts` lets them share their characters.
MailMessageRecord recordFromCandidate(const IndexedMessageCandidate& candidate, const FileURL& fileURL,
                                      std::vector<MailAttachmentRecord> attachments,
                                      const MailboxLabels& labels, TextInterner& texts);

} // namespace mailstore

} // namespace corvane
