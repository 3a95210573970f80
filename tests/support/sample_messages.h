// Messages with their .emlx files in a home, as a scan would hand them over.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "records/mail_message_record.h"
#include "support/temporary_home.h"

namespace corvane::testing {

struct MessageSketch {
    std::string name; // of the file; also subject and Message-ID
    int year = 2020;  // 0: without a date
    std::string account = "imap://A";
    std::string mailbox = "INBOX";
    std::size_t bytes = 400;
    bool hasFile = true;
};

inline MailMessageRecord sampleMessage(const TemporaryHome& home, const MessageSketch& sketch) {
    const std::string relative = fmt::format("Library/Mail/V10/a/{}.emlx", sketch.name);
    std::string mail = fmt::format(
        "Message-ID: <{0}@example.org>\r\nSubject: {0}\r\nContent-Type: text/plain\r\n\r\n", sketch.name);
    if (mail.size() < sketch.bytes) mail.append(sketch.bytes - mail.size(), 'x');
    MailMessageRecord message;
    message.id = home.at(relative);
    message.fileURL = FileURL(message.id);
    message.subject = sketch.name;
    message.sender = "发件人 <sender@example.org>";
    message.mailbox = sketch.mailbox;
    message.messageIdentifier = SharedText(sketch.name + "@example.org");
    message.messageSize = static_cast<std::int64_t>(mail.size());
    if (!sketch.account.empty()) message.accountIdentifier = SharedText(sketch.account);
    if (sketch.year > 0) {
        const std::chrono::year_month_day day{std::chrono::year(sketch.year), std::chrono::June,
                                              std::chrono::day(15)};
        message.date = std::chrono::sys_days(day);
    }
    if (sketch.hasFile) home.write(relative, fmt::format("{}\n{}<?xml version=\"1.0\"?>", mail.size(), mail));
    return message;
}

inline MessageList sampleMessages(const TemporaryHome& home, const std::vector<MessageSketch>& sketches) {
    MessageList messages;
    for (const MessageSketch& sketch : sketches) messages.push_back(sampleMessage(home, sketch));
    return messages;
}

} // namespace corvane::testing
