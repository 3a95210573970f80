#include "archive/message_identity.h"

#include <chrono>
#include <string>

#include <gtest/gtest.h>

namespace corvane::archive {
namespace {

using namespace std::string_literals;

TEST(HoldsAnotherMessage, OnlyWhenTheHeaderContradictsInMoreThanOneField) {
    const auto when = [](int day, const char* hour) {
        return "Date: " + std::to_string(day) + " Sep 2020 " + hour + ":00:00 +0000\n";
    };
    const std::string date = when(13, "12");
    const std::string otherDay = when(15, "13");

    struct {
        const char* what;
        std::string mail;
        bool isAnother;
        bool isAnotherWithoutID; // where the record has no Message-ID
    } const cases[] = {
        {"the same", "Message-ID: <ID@X>\nSubject: Tax 2019\n" + date + "\n", false, false},
        {"another mail", "Message-ID: <n@x>\nSubject: Buy now\n" + otherDay + "\n", true, true},
        {"id and subject", "Message-ID: <n@x>\nSubject: Buy now\n" + date + "\n", true, false},
        {"id and date", "Message-ID: <n@x>\nSubject: Tax 2019\n" + otherDay + "\n", true, false},
        {"the id alone", "Message-ID: <n@x>\nSubject: Tax 2019\n" + date + "\n", false, false},
        {"an hour less than a day apart", "Message-ID: <n@x>\n" + when(14, "11") + "\n", false, false},
        {"all but the id", "Message-ID: <id@x>\nSubject: Buy now\n" + otherDay + "\n", false, true},
        {"no id, subject and date differ", "Subject: Buy now\n" + otherDay + "\n", true, true},
        {"no id, one differs", "Subject: Buy now\n" + date + "\n", false, false},
        {"no fields at all", "x", false, false},
        {"empty", "", false, false},
        {"an id that says nothing", "Message-ID: <>\nSubject: Buy now\n\n", false, false},
        {"a subject in other blanks", "Message-ID: <n@x>\nSubject: =?utf-8?Q?Tax_2?=\n =?utf-8?Q?019?=\n\n",
         false, false},
        {"a subject that can't be decoded", "Message-ID: <n@x>\nSubject: =?utf-8?X?zz?=\n\n", false, false},
        {"lines ending in CR",
         "Subject: Tax 2019\rMessage-ID: <n@x>\r" + date.substr(0, date.size() - 1) +
             "\r\rSubject: Buy now\r",
         false, false},
        {"another one with CR", "Message-ID: <n@x>\rSubject: Buy now\r\rbody\r", true, false},
        {"fields of the body", "Subject: Tax 2019\n\nMessage-ID: <n@x>\nSubject: Buy now\n" + otherDay, false,
         false},
    };

    MailMessageRecord message;
    message.messageIdentifier = "id@x";
    message.subject = "Tax 2019";
    message.date = Date(std::chrono::seconds(1'600'000'000)); // 2020-09-13 12:26:40
    MailMessageRecord unidentified = message;
    unidentified.messageIdentifier.reset();
    for (const auto& [what, mail, isAnother, isAnotherWithoutID] : cases) {
        EXPECT_EQ(holdsAnotherMessage(ExpectedMessage::of(message), mail), isAnother) << what;
        EXPECT_EQ(holdsAnotherMessage(ExpectedMessage::of(unidentified), mail), isAnotherWithoutID) << what;
    }
    unidentified.subject = "无主题";
    EXPECT_FALSE(holdsAnotherMessage(ExpectedMessage::of(unidentified), cases[1].mail));
}

} // namespace
} // namespace corvane::archive
