// Messages for tests of the mail list.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <QStringList>

#include "records/mail_message_record.h"

namespace corvane::testing {

inline MailMessageRecord sampleMessage(const std::string& path) {
    MailMessageRecord message;
    message.id = path;
    message.fileURL = FileURL(path);
    message.subject = "主题 " + path;
    message.sender = "周明哲 <zhou@a.example>";
    message.recipients = "林志远";
    message.mailbox = "收件箱";
    message.accountIdentifier = SharedText("imap://A");
    message.accountName = SharedText("a@a.example");
    message.messageSize = 1'000'000;
    message.preview = "正文";
    return message;
}

inline QStringList texts(std::initializer_list<const char*> items) {
    QStringList list;
    for (const char* item : items) list += QString::fromUtf8(item);
    return list;
}

inline Date dateIn(int year) {
    return std::chrono::sys_days(std::chrono::year(year) / 6 / 15) + std::chrono::hours(4);
}

// One message a letter, in their order.
inline SharedMessageList messagesOf(const std::string& letters) {
    auto list = std::make_shared<MessageList>();
    for (const char letter : letters) list->push_back(sampleMessage(std::string("/m/") + letter));
    return list;
}

} // namespace corvane::testing
