// How one list of messages becomes the next, row by row. Pure, linear in both lists; made in the background
// and applied on the main thread.
#pragma once

#include <cstddef>
#include <vector>

#include "records/mail_message_record.h"

namespace corvane {

struct RowRun {
    int first = 0;
    int count = 0;

    friend bool operator==(const RowRun&, const RowRun&) = default;
};

struct RowChanges {
    // The rows that stay have another order, or the changes are too many to be told one by one: then there
    // are no runs.
    bool isReset = false;
    std::vector<RowRun> removed;  // rows of the earlier list, in order
    std::vector<RowRun> inserted; // rows of the next list, in order
    std::vector<RowRun> changed;  // rows of the next list that stayed and show something else, in order
    std::vector<int> newRows;     // the next row of each earlier one, -1 when it has gone

    [[nodiscard]] bool isEmpty() const {
        return !isReset && removed.empty() && inserted.empty() && changed.empty();
    }
};

// Above this a view costs more by each run than by beginning anew.
inline constexpr std::size_t mostRunsTold = 200;

RowChanges rowChanges(const MessageList& from, const MessageList& to, std::size_t mostRuns = mostRunsTold);

} // namespace corvane
