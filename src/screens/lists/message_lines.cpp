#include "screens/lists/message_lines.h"

#include "records/texts/formatters.h"
#include "screens/texts/shown_text.h"

namespace corvane::screens {

namespace {

// The date goes first: a table program that takes the line in sees no formula.
void appendLine(QString& lines, const MailMessageRecord& message) {
    lines += wholeText(message.formattedDate()) + QStringLiteral(" · ") + shownLine(message.sender) +
             QStringLiteral(" · ") + shownLine(message.subject) + QStringLiteral(" · ") +
             wholeText(formatByteCount(message.messageSize)) + u'\n';
}

} // namespace

QString messageLines(const MessageList& messages, const RowRanges& rows, const std::stop_token& stop) {
    QString lines;
    for (const auto& range : rows.ranges()) {
        for (int row = range.first; row < range.end; ++row) {
            if (stop.stop_requested()) return {};
            appendLine(lines, messages[static_cast<std::size_t>(row)]);
        }
    }
    lines.chop(1);
    return lines;
}

std::optional<QString> linesOfRows(const MessageRows& selected, const TaskHandle& task) {
    QString lines = messageLines(*selected.messages, selected.rows, task.stopToken());
    return lines.isEmpty() ? std::nullopt : std::optional(std::move(lines));
}

} // namespace corvane::screens
