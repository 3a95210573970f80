// Messages as a scan would list them, without files, from the few fields that a test names.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "records/mail_message_record.h"

namespace corvane::testing {

inline Date at(std::int64_t seconds) {
    return Date(std::chrono::seconds(seconds));
}

inline constexpr std::int64_t newYear2024 = 1704067200; // UTC

struct Sketch {
    std::string id;
    std::optional<std::int64_t> date = newYear2024;
    std::string identifier = {};
    std::string mailbox = "INBOX";
    std::optional<std::string> account = "imap://A";
    std::int64_t size = 10;
    std::vector<std::int64_t> attachmentSizes = {}; // negative: not known
    std::string subject = "s";
    std::string sender = "x@y";
};

inline MailMessageRecord make(const Sketch& sketch) {
    MailMessageRecord message;
    message.id = sketch.id;
    message.fileURL = FileURL(message.id);
    if (sketch.date) message.date = at(*sketch.date);
    if (!sketch.identifier.empty()) message.messageIdentifier = SharedText(sketch.identifier);
    message.mailbox = sketch.mailbox;
    if (sketch.account) message.accountIdentifier = SharedText(*sketch.account);
    message.messageSize = sketch.size;
    for (const std::int64_t size : sketch.attachmentSizes) {
        message.attachments.push_back({Uuid(), "文件.pdf", "PDF 文档", std::nullopt, std::nullopt});
        if (size >= 0) message.attachments.back().estimatedSize = size;
    }
    message.subject = sketch.subject;
    message.sender = sketch.sender;
    return message;
}

inline MessageList makeAll(const std::vector<Sketch>& sketches) {
    MessageList messages;
    for (const Sketch& sketch : sketches) messages.push_back(make(sketch));
    return messages;
}

} // namespace corvane::testing
