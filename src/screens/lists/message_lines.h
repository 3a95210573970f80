// Messages as lines of text, for the clipboard.
#pragma once

#include <optional>
#include <stop_token>

#include <QString>

#include "model/tasks/task_slot.h"
#include "records/mail_message_record.h"
#include "screens/lists/row_ranges.h"

namespace corvane::screens {

// Date, sender, subject and size of the messages in these rows, one a line, without a line end behind the
// last. Any thread; linear. Empty after a stop.
QString messageLines(const MessageList& messages, const RowRanges& rows, const std::stop_token& stop);

// Some rows of a list, as a background job gets them.
struct MessageRows {
    SharedMessageList messages;
    RowRanges rows;
};

// The lines of these rows; absent where there are none.
std::optional<QString> linesOfRows(const MessageRows& selected, const TaskHandle& task);

} // namespace corvane::screens
