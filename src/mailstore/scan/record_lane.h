// From pieces of rows to records. One for each thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mailstore/folders/message_file_index.h"
#include "mailstore/index/indexed_messages.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "mailstore/sqlite/json_rows.h"
#include "records/mail_message_record.h"
#include "text/shared_text.h"

namespace corvane::mailstore {

// Where a message stands in the order of the scan: newest first, and of one date by ROWID.
struct RowOrder {
    IndexedDate date;
    std::int64_t rowID = 0;

    friend bool operator<(const RowOrder& a, const RowOrder& b) {
        if (a.date != b.date) return a.date > b.date;
        return a.rowID < b.rowID;
    }
};

// The messages of one piece that lie on this disk.
struct MadeRecords {
    // Absent for a message that can't be parsed. The labels of the mailbox are still to come.
    std::vector<std::optional<MailMessageRecord>> records;
    // Of the same entries.
    std::vector<RowOrder> orders;
    std::vector<std::uint32_t> mailboxes; // their numbers in the lane
};

class RecordLane {
  public:
    // The metrics must outlive the lane.
    RecordLane(std::shared_ptr<StoreListing> listing, ScanTimingMetrics& timing);

    // Of the rows in a file. Nullopt when it can't be read as rows.
    std::optional<MadeRecords> make(const std::string& rowsPath);

    struct Mailbox {
        std::string url;
        MessageFileIndex::Mailbox* files = nullptr;
        std::int64_t candidates = 0; // rows in it, with and without a file
    };

    // By number.
    [[nodiscard]] const std::vector<Mailbox>& mailboxes() const { return mailboxes_; }

  private:
    std::uint32_t mailboxNumber(std::string_view url);
    void addRecord(const IndexedMessageCandidate& candidate, MadeRecords& made);

    MessageFileIndex files_;
    ScanTimingMetrics& timing_;
    JsonRowParser parser_;
    TextInterner texts_;
    std::vector<Mailbox> mailboxes_;
    std::unordered_map<std::string, std::uint32_t, TextHash, TextEqual> numbersByURL_;
};

} // namespace corvane::mailstore
