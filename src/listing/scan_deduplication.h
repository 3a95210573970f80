// Merging the records of a scan into one a message. Mail holds one message in several files: in several
// mailboxes, under another account, after a rebuild of its index. The record that is kept remembers all of
// them. Pure functions; they read neither the disk nor the model.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "records/mail_message_record.h"
#include "text/position_table.h"

namespace corvane {

// Says which scanned files are one message. Not the stable id, which says what an archive calls it.
std::string duplicateKey(const MailMessageRecord& record);

// More attachments, or as many with a strictly larger known size. A tie keeps the existing record.
bool isBetterDuplicate(const MailMessageRecord& candidate, const MailMessageRecord& existing);

// Both lists in the natural order of their paths, each path once.
std::vector<FileURL> mergedMessageFileURLs(std::vector<FileURL> a, const std::vector<FileURL>& b);

// The records of a growing scan, one a key, in order of first sight.
class DeduplicatedRecords {
  public:
    // Room for this many records without growth.
    void reserve(std::size_t count);

    // Merges records in their order. A message keeps the place of its first sight, whichever record wins.
    void merge(std::vector<MailMessageRecord> records);

    [[nodiscard]] const MessageList& records() const { return records_; }

    [[nodiscard]] MessageList take() && { return std::move(records_); }

  private:
    // The place of the record's message, and whether it is new. Equal to a look-up by `duplicateKey`, without
    // making the text for the messages that have an identifier.
    std::pair<std::size_t, bool> positionOf(const MailMessageRecord& record);

    MessageList records_;
    PositionTable positionByIdentifier_;
    std::unordered_map<std::string, std::size_t> positionByFallbackKey_;
};

MessageList deduplicatedRecords(MessageList records);

} // namespace corvane
