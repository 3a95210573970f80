// The messages that the index knows: what a scan lists without opening a message. Any thread.
#pragma once

#include <compare>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mailstore/folders/mailbox_url.h"
#include "mailstore/sqlite/json_rows.h"
#include "records/file_url.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane {

// A date in the order of SQLite, whatever stands in its column: numbers by value, texts behind them. Of
// texts, which Mail doesn't write there, the first eight bytes count.
struct IndexedDate {
    bool isText = false;
    std::int64_t whole = 0;
    double fraction = 0;

    friend auto operator<=>(const IndexedDate&, const IndexedDate&) = default;
};

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
    IndexedDate date{};               // the same as the index sorts it
    std::int64_t size = 0;            // bytes
    std::string_view messageIDHeader; // empty when the store lacks the column
};

// Thrown by work that a requested stop has ended, to whoever requested it.
class ScanStopped : public std::exception {};

namespace mailstore {

// Nullopt for a row without a ROWID. The texts are views into the row.
std::optional<IndexedMessageCandidate> candidateOf(JsonRow& row);

// The fields of a record that its mailbox decides.
struct MailboxLabels {
    SharedText mailbox;
    std::optional<SharedText> accountIdentifier;
    std::optional<SharedText> accountName;

    void applyTo(MailMessageRecord& record) const;
};

MailboxLabels mailboxLabels(std::string_view mailboxURL, const AccountNames& accountNamesByPrefix);

// The record of a candidate, without reading the message, and yet without the labels of its mailbox. Senders
// and recipients recur in many records; `texts` lets them share their characters.
MailMessageRecord recordFromCandidate(const IndexedMessageCandidate& candidate, const FileURL& fileURL,
                                      std::vector<MailAttachmentRecord> attachments, TextInterner& texts);

} // namespace mailstore

} // namespace corvane
