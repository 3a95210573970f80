// The messages that the index knows, and their files: what a scan lists without opening a message. Background
// work; any thread.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "mailstore/mail_store_context.h"
#include "mailstore/mailbox_url.h"
#include "mailstore/scan_timing_metrics.h"
#include "records/file_url.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

// One row of the index. The values that recur in many rows share their characters.
struct IndexedMessageCandidate {
    std::int64_t rowID = 0; // also the base name of the message file
    SharedText mailboxURL;  // percent-encoded
    std::vector<SharedText> attachmentNames;
    SharedText subject; // with its prefix
    SharedText senderName;
    SharedText senderAddress;
    SharedText recipients;
    std::int64_t timestamp = 0; // seconds since 1970
    std::int64_t size = 0;      // bytes
    SharedText messageIDHeader; // empty when the store lacks the column
};

// Candidates with a file, newest first: `candidates[i]` is the one of `files[i]`.
struct IndexedMessageFiles {
    std::vector<FileURL> files;
    std::vector<IndexedMessageCandidate> candidates;
};

// A requested stop ended the work; whoever requested it catches this.
class ScanStopped : public std::exception {};

struct CandidateFilter {
    std::optional<std::int64_t> maximumYear; // in UTC
    bool requireIndexedAttachments = false;
    std::vector<std::string> accountURLPrefixes; // empty for every account
};

namespace mailstore {

// The query that gives the candidates, newest first. Throws MailIndexQueryError for a year that has no end.
std::string candidateQuery(const CandidateFilter& filter, bool hasMessageIDHeader);

// Hands over the candidates in the order of the query. Throws MailIndexQueryError, after candidates too when
// the output is damaged, and ScanStopped.
void visitIndexedCandidates(const MailStoreContext& context, const std::string& rootPath,
                            const CandidateFilter& filter, const std::stop_token& stop,
                            const std::function<void(IndexedMessageCandidate&&)>& visit);

// All candidates. Throws as above.
std::vector<IndexedMessageCandidate> indexedMessageCandidates(const MailStoreContext& context,
                                                              const std::string& rootPath,
                                                              const CandidateFilter& filter,
                                                              const std::stop_token& stop = {});

// The candidates whose file exists; the others, which only the server has, are left out. Nothing when the
// index isn't there to be used. Throws as above.
std::optional<IndexedMessageFiles>
indexedMessages(const MailStoreContext& context, const std::string& rootPath,
                std::optional<std::int64_t> maximumYear, const std::vector<std::string>& accountURLPrefixes,
                ScanTimingMetrics* timing, const std::stop_token& stop = {});

// What a record takes from the mailbox of its message.
struct MailboxLabels {
    SharedText mailbox;
    std::optional<SharedText> accountIdentifier;
    std::optional<SharedText> accountName;
};

MailboxLabels mailboxLabels(std::string_view mailboxURL, const AccountNames& accountNamesByPrefix);

// The record of a candidate, without reading the message.
MailMessageRecord recordFromCandidate(const IndexedMessageCandidate& candidate, const FileURL& fileURL,
                                      std::vector<MailAttachmentRecord> attachments,
                                      const MailboxLabels& labels);

} // namespace mailstore

} // namespace corvane
