// Records with every field set, and random ones, for round trips.
#pragma once

#include <chrono>
#include <optional>
#include <random>
#include <string>

#include "records/archived/archive_records.h"
#include "records/mail_message_record.h"

namespace corvane::testing {

inline MailMessageRecord
fullMessage(const std::string& path = "/mail/V10/A/INBOX.mbox/Data/Messages/1.emlx") {
    MailMessageRecord record;
    record.id = path;
    record.subject = "主题 \"引号\" \\ \n\x01 😀";
    record.sender = "张三 <zhang@example.com>";
    record.recipients = "a@example.com, b@example.com";
    record.date = Date(std::chrono::seconds(1700000000));
    record.mailbox = "收件箱";
    record.accountIdentifier = "imap://UUID";
    record.accountName = "zhang@example.com";
    record.isImportedMailbox = false;
    record.fileURL = FileURL(SharedText(path));
    record.relatedMessageFileURLs = {FileURL("/mail/a b/中文%;?#.emlx")};
    record.messageIdentifier = "abc@host";
    record.referencedMessageIdentifiers = {"x@host", "y@host"};
    record.messageSize = 123456789012;
    record.attachments = {{Uuid::random(), "报告.pdf", "PDF 文档", 500000, FileURL("/mail/报告.pdf")},
                          {Uuid::random(), "x", "附件", std::nullopt, std::nullopt}};
    record.preview = "正在加载正文预览...";
    return record;
}

// Texts with quotes, backslashes, controls and characters of every length.
inline std::string randomText(std::mt19937& random, std::size_t limit = 40) {
    static const char* const pieces[] = {"a", "\"", "\\", "\n", "{", "}",  "[",
                                         "]", ",",  ":",  "中", "é", "😀", "\x01"};
    std::string text;
    for (std::size_t count = random() % limit; count > 0; --count)
        text += pieces[random() % std::size(pieces)];
    return text;
}

inline MailMessageRecord randomMessage(std::mt19937& random, std::size_t number) {
    MailMessageRecord record = fullMessage("/m/" + std::to_string(number) + ".emlx");
    record.subject = randomText(random);
    record.recipients = randomText(random, 200);
    if (random() % 3 == 0) record.date.reset();
    if (random() % 3 == 0) record.accountName.reset();
    if (random() % 2 == 0) record.relatedMessageFileURLs.reset();
    if (random() % 2 == 0) record.attachments.clear();
    if (random() % 4 == 0) record.fileURL = FileURL(SharedText("/other/" + randomText(random)));
    return record;
}

} // namespace corvane::testing
