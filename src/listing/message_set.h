// One generation of messages with what is found out of it once: its lookup and its statistics. Immutable once
// made, so any thread may read it; made in the background.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "listing/message_statistics.h"
#include "records/mail_message_record.h"
#include "records/statistics_records.h"
#include "text/position_table.h"
#include "text/shared_text.h"

namespace corvane {

struct MessageSet {
    SharedMessageList messages = std::make_shared<const MessageList>();
    PositionTable positionByID;
    std::shared_ptr<const CountedMessages> counted; // in the order of the list; null: not counted
    std::vector<YearStat> yearStats;
    // What a scan of everything found. No other list, such as that of a year-limited scan, is ever cached.
    bool isComplete = false;

    // Throws std::logic_error for a repeated id, which no scan and no sound cache has.
    static std::shared_ptr<const MessageSet> make(SharedMessageList messages, bool isComplete);

    // The growing list of a running scan: without the lookup, which would cost more than showing it.
    static std::shared_ptr<const MessageSet> passing(SharedMessageList messages);

    // The message of an id; null when there is none, or no lookup was made. Valid as long as the set.
    [[nodiscard]] const MailMessageRecord* find(std::string_view id) const;
};

using SharedMessageSet = std::shared_ptr<const MessageSet>;

// Whether all messages of a list are available. The available ids are always some of those of the list, and
// no id stands there twice.
inline bool areAllAvailable(const MessageList& messages, const SharedTextSet& availableIDs) {
    return messages.size() == availableIDs.size();
}

} // namespace corvane
