#include "listing/message_statistics.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "listing/message_sketch.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

TEST(YearStats, CountEachMessageOnceOutsideOfTrashInLocalYears) {
    const TimeZoneGuard zone("Asia/Shanghai");
    const MessageList messages = makeAll({
        {.id = "1", .date = newYear2024 - 8 * 3600, .attachmentSizes = {5, -1}},
        {.id = "2", .date = newYear2024 - 8 * 3600 - 1},
        {.id = "3", .identifier = "m"},
        {.id = "4", .identifier = "m", .size = 99},
        {.id = "5", .mailbox = " Deleted Messages.mbox "},
        {.id = "6", .mailbox = "垃圾邮件"},
        {.id = "7", .date = std::nullopt},
        {.id = "8", .date = -99999999999},
    });
    const auto stats = computeYearStats(allOf(messages));
    ASSERT_EQ(stats.size(), 2U);
    EXPECT_EQ(stats[0], (YearStat{2024, 2, 1, 2, 20, 5}));
    EXPECT_EQ(stats[1], (YearStat{2023, 1, 0, 0, 10, 0}));
    EXPECT_FALSE(computeMessageYears(messages).contains("7"));
}

TEST(AccountStats, AreNamedAndOrderedByBytes) {
    MailAccount known;
    known.urlPrefix = "imap://A";
    known.emailAddress = "a@b";
    const MessageList messages = makeAll({
        {.id = "1"},
        {.id = "2", .account = std::nullopt, .size = 50},
        {.id = "3", .account = "imap://Z", .size = 10},
        {.id = "4", .mailbox = "Trash", .account = "imap://T"},
        {.id = "5", .date = std::nullopt, .account = "imap://U"},
    });
    std::vector<std::string> found;
    for (const auto& group : computeAccountYearStats(allOf(messages), {known})) {
        found.push_back(group.accountPrefix + "=" + group.accountName + ":" +
                        std::to_string(group.messageBytes));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"legacy-unclassified=未识别邮箱:50", "imap://A=a@b:10",
                                               "imap://Z=imap://Z:10", "imap://U=imap://U:0"}));
}

TEST(Summary, AddsUpAndFindsTheExtremes) {
    const MessageList messages = makeAll(
        {{.id = "1", .date = 5, .attachmentSizes = {-1}}, {.id = "2", .date = 9}, {.id = "3", .date = {}}});
    const MailScanSummary summary = makeSummary(allOf(messages), 7);
    EXPECT_EQ(summary.scannedMessages, 7);
    EXPECT_EQ(summary.matchedMessages, 3);
    EXPECT_EQ(summary.attachmentMessages, 1);
    EXPECT_EQ(summary.bytes, 30);
    EXPECT_EQ(summary.newestDate, at(9));
    EXPECT_EQ(summary.oldestDate, at(5));
}

TEST(Order, PutsUndatedMessagesLastInBothDirections) {
    const MailMessageRecord early = make({.id = "1", .date = 1, .subject = "b"});
    const MailMessageRecord late = make({.id = "2", .date = 2});
    const MailMessageRecord undated = make({.id = "3", .date = {}, .subject = "a"});
    for (const bool ascending : {false, true}) {
        EXPECT_TRUE(compareByDate(early, undated, ascending));
        EXPECT_FALSE(compareByDate(undated, early, ascending));
        EXPECT_EQ(compareByDate(early, late, ascending), ascending);
    }
    EXPECT_TRUE(compareByDate(make({.id = "4", .date = 1, .subject = "a"}), early, false));
}

} // namespace
} // namespace corvane::testing
