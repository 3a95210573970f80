// The records of the messages that the index knows and that lie on this disk. Shells ask the index for
// pieces of its rows while other threads make records of the pieces that are there. Background work.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "mailstore/index/indexed_messages.h"
#include "mailstore/scan/record_lane.h"
#include "mailstore/scan/scan_request.h"
#include "mailstore/scan/scan_timing_metrics.h"
#include "records/mail_message_record.h"

namespace corvane::mailstore {

// One thread.
class IndexedRecords {
  public:
    // What one lane made.
    struct LaneRecords {
        std::vector<MadeRecords> pieces;
        // By the lane's numbers; nullopt for a mailbox of which no account is wanted.
        std::vector<std::optional<MailboxLabels>> labels;
    };

    explicit IndexedRecords(std::vector<LaneRecords> lanes);

    [[nodiscard]] std::size_t size() const { return order_.size(); }

    // The next message, newest first; absent for one that can't be parsed. To be called `size` times.
    std::optional<MailMessageRecord> next();

  private:
    struct Entry {
        RowOrder order;
        std::uint32_t lane = 0;
        std::uint32_t piece = 0;
        std::uint32_t place = 0;
    };

    std::vector<LaneRecords> lanes_;
    std::vector<Entry> order_;
    std::size_t returned_ = 0;
};

// Returns nullopt when there is no index or no shell to query it. Throws MailIndexQueryError, and ScanStopped
// after a requested stop of the context. Writes the figures about the index and the attachments into
// `timing`.
std::optional<IndexedRecords> readIndexedRecords(const ScanRequest& request, ScanTimingMetrics& timing);

} // namespace corvane::mailstore
